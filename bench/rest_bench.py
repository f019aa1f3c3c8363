#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""Stowly at rest beside tray apps a user already runs, on the desktop of the end-to-end tests.

Started by scripts/bench-rest after it has built everything. One desktop (Xvfb, openbox, tint2
with its tray, REST_APPS xterms, idle processes up to about REST_PROCESSES), and on it, one
after the other in an order that turns every round: Stowly with the software renderer (its
default), Stowly on OpenGL, a bare QSystemTrayIcon with a menu, and the Debian tray app when
it is installed. Each is measured with its panel or menu never opened, then after CYCLES
open/close cycles; Stowly's own log gives the time from the click to the panel's first
frame. Last, a long run of open/close cycles of Stowly's panel with memory sampled along it.
Everything this script starts ends with the desktop.
"""

import argparse
import datetime
import json
import os
import platform
import re
import shutil
import signal
import statistics
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "ui", "e2e"))
from testbed import TestBed          # noqa: E402
from stowlydriver import Stowly      # noqa: E402

REST_APPS = 20
REST_PROCESSES = 200
# A closed panel keeps its view this long before it lets it go (PanelWindow's delay), and
# a little more for the release itself.
RELEASE_WAIT = 4.0 + 2.0
FRAME_LINE = re.compile(r"panel open \d+: first frame ([0-9.]+) ms after the request \((view made|view kept)\)")
OUR_ENV_DROP = ("QT_QUICK_BACKEND", "QMLSCENE_DEVICE", "QSG_RHI_BACKEND", "QT_QPA_PLATFORM")


def log(*args):
    print("[bench-rest]", *args, file=sys.stderr, flush=True)


def process_count():
    return sum(1 for name in os.listdir("/proc") if name.isdigit())


def memory(pid):
    """Resident and private (RssAnon) memory in KiB, from /proc/PID/status."""
    with open(f"/proc/{pid}/status") as f:
        status = f.read()

    def kb(field):
        return int(re.search(field + r":\s+(\d+)", status).group(1))

    return {"rss_kb": kb("VmRSS"), "anon_kb": kb("RssAnon")}


def cpu_seconds(pid):
    # The scheduler's run time of every thread, in nanoseconds: /proc/PID/stat counts in
    # clock ticks (10 ms), too coarse for a program that should use well under 0.1 % of a
    # core. A thread that ends between two samples takes its time with it, so the sum is
    # compared only across a rest, when the threads stay the same.
    total = 0
    try:
        for tid in os.listdir(f"/proc/{pid}/task"):
            try:
                with open(f"/proc/{pid}/task/{tid}/schedstat") as f:
                    total += int(f.read().split()[0])
            except FileNotFoundError:
                pass  # the thread ended meanwhile
        return total / 1e9
    except FileNotFoundError:  # a kernel without scheduler statistics
        with open(f"/proc/{pid}/stat") as f:
            fields = f.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def rest_sample(pid, seconds):
    c0, t0 = cpu_seconds(pid), time.monotonic()
    time.sleep(seconds)
    c1, t1 = cpu_seconds(pid), time.monotonic()
    sample = memory(pid)
    sample["cpu_percent"] = 100 * (c1 - c0) / (t1 - t0)
    sample["seconds"] = t1 - t0
    return sample


def icon_of(driver):
    """The program's tray icon window, or None; a lookup the loaded X server did not answer
    in time counts as not found yet."""
    try:
        return driver.tray_icon()
    except (subprocess.TimeoutExpired, KeyError, ValueError):
        return None


class Subject:
    """One program on the tray, started fresh for each measurement."""

    def __init__(self, key, label, argv, env=None, stowly=False, tray=True):
        self.key, self.label, self.argv, self.env, self.stowly = key, label, argv, env or {}, stowly
        self.tray = tray   # False: a program without an icon, measured at rest only

    def start(self, bed, tag):
        env = {k: v for k, v in bed.env.items() if k not in OUR_ENV_DROP}
        env.update(self.env)
        if self.stowly:
            env["QT_LOGGING_RULES"] = "stowly.panel.debug=true"
            driver = Stowly(bed, self.argv[0])
            driver.process = bed.spawn(tag, self.argv, env=env)
            bed.wait_for(lambda: icon_of(driver) is not None, f"{self.label}'s tray icon", 60)
            return driver
        process = bed.spawn(tag, self.argv, env=env)
        driver = Stowly(bed, self.argv[0])   # finds the tray icon by pid the same way
        driver.process = process
        if not self.tray:
            return driver
        try:
            bed.wait_for(lambda: icon_of(driver) is not None, f"{self.label}'s tray icon", 15)
        except TimeoutError:
            pass   # some tray apps embed a window without _NET_WM_PID; they still count
        return driver

    def cycle(self, bed, driver, tag):
        """Opens and closes the panel (Stowly) or the tray menu (the others) once. Stowly's
        own log says when its panel has drawn its first frame and when it closed."""
        if self.stowly:
            opened, closed = log_count(bed, tag, "first frame"), log_count(bed, tag, "panel closed")
            for attempt in range(3):
                click_icon(bed, driver, "1")
                if wait_log(bed, tag, "first frame", opened + 1, 10):
                    break
                if attempt == 2:
                    raise TimeoutError("the panel did not open")
            time.sleep(0.1)
            click_icon(bed, driver, "1")
            if not wait_log(bed, tag, "panel closed", closed + 1, 10):
                raise TimeoutError("the panel did not close")
            # A click right after the panel lost the focus counts as the closing click.
            time.sleep(0.35)
            return
        if not self.tray or (driver.process.pid not in _icons and icon_of(driver) is None):
            return
        click_icon(bed, driver, "3")
        time.sleep(0.3)
        bed.run(["xdotool", "key", "Escape"])
        time.sleep(0.1)


def log_text(bed, tag):
    try:
        with open(os.path.join(bed.home, tag + ".log"), errors="replace") as f:
            return f.read()
    except OSError:
        return ""


def log_count(bed, tag, what):
    return log_text(bed, tag).count(what)


def wait_log(bed, tag, what, count, timeout):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        if log_count(bed, tag, what) >= count:
            return True
        time.sleep(0.02)
    return False


_icons = {}


def click_icon(bed, driver, button):
    # The icon stays where the tray put it: looked up once per program.
    key = driver.process.pid
    if key not in _icons:
        icon = bed.wait_for_value(lambda: icon_of(driver), "the tray icon", 30)
        x, y, width, height = bed.geometry(icon)
        _icons[key] = (str(x + width // 2), str(y + height // 2))
    x, y = _icons[key]
    # No --sync: with the pointer already on the icon (every click after the first) xdotool
    # would wait for a motion that never comes. The server takes the move and the click in
    # the order they were sent, so the click lands on the icon all the same.
    bed.run(["xdotool", "mousemove", x, y, "click", button])


def frame_times(bed, tag):
    path = os.path.join(bed.home, tag + ".log")
    out = []
    if os.path.exists(path):
        with open(path, errors="replace") as f:
            for match in FRAME_LINE.finditer(f.read()):
                out.append({"ms": float(match.group(1)), "made": match.group(2) == "view made"})
    return out


def measure(bed, subject, tag, args):
    driver = subject.start(bed, tag)
    pid = driver.process.pid
    try:
        time.sleep(args.settle)   # start-up is not rest
        never = rest_sample(pid, args.rest_seconds)
        for _ in range(args.cycles):
            subject.cycle(bed, driver, tag)
        time.sleep(RELEASE_WAIT)
        after = rest_sample(pid, args.rest_seconds)
        if driver.process.poll() is not None:
            raise RuntimeError(f"{subject.label} ended during the measurement ({driver.process.returncode})")
        return {"never": never, "after": after, "frames": frame_times(bed, tag), "load": os.getloadavg()[0]}
    finally:
        bed.end(driver.process)


def curve(bed, subject, args):
    """Memory along a long run of panel open/close cycles. Every RELEASE_EVERY-th cycle the
    panel stays closed long enough for its view to be released; memory is read then, and
    every SAMPLE_EVERY cycles in between (with the view kept)."""
    driver = subject.start(bed, "curve")
    pid = driver.process.pid
    points = []
    try:
        time.sleep(args.settle)
        points.append(dict(memory(pid), cycle=0, state="never opened"))
        started = time.monotonic()
        for n in range(1, args.curve_cycles + 1):
            subject.cycle(bed, driver, "curve")
            if n % args.release_every == 0:
                time.sleep(RELEASE_WAIT)
                points.append(dict(memory(pid), cycle=n, state="released"))
                log(f"curve: {n} cycles, {points[-1]['rss_kb'] / 1024:.1f} MiB resident, "
                    f"{points[-1]['anon_kb'] / 1024:.1f} MiB private")
            elif n % args.sample_every == 0:
                points.append(dict(memory(pid), cycle=n, state="kept"))
        return {"points": points, "seconds": time.monotonic() - started}
    finally:
        bed.end(driver.process)


# -- the report ----------------------------------------------------------------------------

def mib(kb):
    return kb / 1024


def span(values, fmt):
    values = [v for v in values if v is not None]
    if not values:
        return "—"
    lo, mid, hi = min(values), statistics.median(values), max(values)
    return fmt(mid) if lo == hi else f"{fmt(mid)} ({fmt(lo)}–{fmt(hi)})"


def report(data):
    subjects = data["subjects"]
    runs = data["runs"]     # key -> [measurement per round]
    bare = runs.get("bare", [])
    lines = []
    started = datetime.datetime.fromisoformat(data["started"])
    loads = [m["load"] for ms in runs.values() for m in ms]
    cpu = "unknown CPU"
    try:
        for line in open("/proc/cpuinfo"):
            if line.startswith("model name"):
                cpu = line.split(":", 1)[1].strip()
                break
    except OSError:
        pass
    lines += [f"Run of {started:%Y-%m-%d %H:%M} UTC on {os.cpu_count()} × {cpu}, Linux {platform.release()}; "
              f"{data['rounds']} rounds, the programs one at a time in an order that turns every round; "
              f"1-minute load {f'{min(loads):.2f}–{max(loads):.2f}' if loads else 'not sampled (no rounds)'}. Desktop: Xvfb, openbox, tint2 with its tray, "
              f"{REST_APPS} xterms, {data['processes']} processes. Each figure is the median over the rounds, "
              "with the range in brackets; ratios are to the bare Qt tray icon measured in the same round.", ""]
    lines += ["| Program | State | Resident | × bare tray | Private (RssAnon) | CPU (% of one core) |",
              "|---|---|---|---|---|---|"]
    for s in subjects:
        ms = runs.get(s["key"], [])
        if not ms:
            continue
        for state, label in (("never", "never opened"), ("after", f"after {data['cycles']} open/close cycles")):
            ratios = [m[state]["rss_kb"] / b[state]["rss_kb"] for m, b in zip(ms, bare)] if bare else []
            lines.append(f"| {s['label']} | {label} | {span([mib(m[state]['rss_kb']) for m in ms], lambda v: f'{v:.1f} MiB')} "
                         f"| {span(ratios, lambda v: f'{v:.2f}×')} "
                         f"| {span([mib(m[state]['anon_kb']) for m in ms], lambda v: f'{v:.1f} MiB')} "
                         f"| {span([m[state]['cpu_percent'] for m in ms], lambda v: f'{v:.3f} %')} |")
    lines += ["", "Click to the panel's first complete frame (Stowly's own clock: from the tray click's "
              "handling to the first frame the window presented):", "",
              "| Renderer | First open (view made) | Reopen within the keep time (median) | Reopen after a release, new view (median) |",
              "|---|---|---|---|"]
    for s in subjects:
        if not s["stowly"]:
            continue
        ms = runs.get(s["key"], [])
        first = [m["frames"][0]["ms"] for m in ms if m["frames"]]
        kept = [statistics.median([f["ms"] for f in m["frames"][1:] if not f["made"]] or [None]) for m in ms
                if any(not f["made"] for f in m["frames"][1:])]
        made = [statistics.median([f["ms"] for f in m["frames"][1:] if f["made"]]) for m in ms
                if any(f["made"] for f in m["frames"][1:])]
        lines.append(f"| {s['label']} | {span(first, lambda v: f'{v:.1f} ms')} | {span(kept, lambda v: f'{v:.1f} ms')} "
                     f"| {span(made, lambda v: f'{v:.1f} ms')} |")
    lines += verdict(data)
    if data.get("curve"):
        c = data["curve"]
        pts = c["points"]
        lines += ["", f"Memory over {pts[-1]['cycle']} open/close cycles of the panel ({c['label']}, "
                  f"{c['seconds'] / 60:.1f} min): every {data['release_every']}th cycle the panel stayed closed "
                  f"until its view was released; in between it was reopened at once (view kept).", "",
                  "| Cycles | State | Resident | Private (RssAnon) |", "|---|---|---|---|"]
        for p in pts:
            lines.append(f"| {p['cycle']} | {p['state']} | {mib(p['rss_kb']):.1f} MiB | {mib(p['anon_kb']):.1f} MiB |")
        released = [p for p in pts if p["state"] == "released"]
        if len(released) >= 3:
            warm = released[1:]
            lines += ["", f"After warm-up (the released samples from cycle {warm[0]['cycle']} on): resident "
                      f"{mib(min(p['rss_kb'] for p in warm)):.1f}–{mib(max(p['rss_kb'] for p in warm)):.1f} MiB, "
                      f"private {mib(min(p['anon_kb'] for p in warm)):.1f}–{mib(max(p['anon_kb'] for p in warm)):.1f} MiB; "
                      f"change from the first to the last: {mib(warm[-1]['rss_kb'] - warm[0]['rss_kb']):+.1f} MiB resident, "
                      f"{mib(warm[-1]['anon_kb'] - warm[0]['anon_kb']):+.1f} MiB private."]
    return "\n".join(lines)


def verdict(data):
    """The limits Stowly holds itself to, checked against this run, and the renderer choice."""
    runs = data["runs"]
    soft, gl, bare = runs.get("software", []), runs.get("opengl", []), runs.get("bare", [])
    if not soft or not bare:
        return []

    def medof(ms, state, key):
        return statistics.median(m[state][key] for m in ms)

    lines = ["", "Limits (medians of this run, Stowly with its default renderer):", "",
             "| Limit | never opened | after the cycles |", "|---|---|---|"]

    def row(label, test, fmt):
        cells = []
        for state in ("never", "after"):
            ok, value = test(state)
            cells.append(f"{fmt(value)} {'holds' if ok else '**exceeded**'}")
        lines.append(f"| {label} | {cells[0]} | {cells[1]} |")

    def ratio(state):
        r = statistics.median(m[state]["rss_kb"] / b[state]["rss_kb"] for m, b in zip(soft, bare))
        return r <= 2.0, r

    row("resident ≤ 2× the bare Qt tray icon", ratio, lambda v: f"{v:.2f}×")
    row("private ≤ 10 MiB", lambda st: (medof(soft, st, "anon_kb") <= 10 * 1024, mib(medof(soft, st, "anon_kb"))),
        lambda v: f"{v:.1f} MiB")
    row("CPU ≤ 0.1 % of one core", lambda st: (medof(soft, st, "cpu_percent") <= 0.1, medof(soft, st, "cpu_percent")),
        lambda v: f"{v:.3f} %")
    floor = runs.get("namefloor", [])
    if floor:
        def to_floor(state):
            return statistics.median(m[state]["cpu_percent"] / f[state]["cpu_percent"]
                                     for m, f in zip(soft, floor) if f[state]["cpu_percent"] > 0)
        lines += ["", "CPU at rest against the floor measured in the same rounds (every process's name read once "
                  f"a second, which an exact list needs at least): the floor took {medof(floor, 'never', 'cpu_percent'):.3f} % "
                  f"of one core; Stowly took {to_floor('never'):.2f}× the floor never opened and "
                  f"{to_floor('after'):.2f}× after the cycles (medians of the per-round ratios)."]
    if gl:
        d_rss = mib(medof(gl, "after", "rss_kb") - medof(soft, "after", "rss_kb"))
        d_anon = mib(medof(gl, "after", "anon_kb") - medof(soft, "after", "anon_kb"))
        first_soft = [m["frames"][0]["ms"] for m in soft if m["frames"]]
        first_gl = [m["frames"][0]["ms"] for m in gl if m["frames"]]
        made_soft = [f["ms"] for m in soft for f in m["frames"][1:] if f["made"]]
        made_gl = [f["ms"] for m in gl for f in m["frames"][1:] if f["made"]]
        lines += ["", "Renderer: after the cycles OpenGL holds "
                  f"{d_rss:+.1f} MiB resident and {d_anon:+.1f} MiB private against the software renderer; "
                  "its first open took "
                  f"{statistics.median(first_gl) if first_gl else float('nan'):.0f} ms against "
                  f"{statistics.median(first_soft) if first_soft else float('nan'):.0f} ms, a reopen with a new view "
                  f"{statistics.median(made_gl) if made_gl else float('nan'):.0f} ms against "
                  f"{statistics.median(made_soft) if made_soft else float('nan'):.0f} ms (medians). "
                  + ("Stowly therefore draws with Qt Quick's software renderer unless the user names another "
                     "through QT_QUICK_BACKEND or QSG_RHI_BACKEND." if d_rss > 0 and d_anon > 0 else
                     "These figures no longer favour the software renderer: the default in "
                     "src/ui/SceneGraphBackend.cpp wants reconsidering.")]
    return lines


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--stowly", required=True)
    parser.add_argument("--baretray", required=True)
    parser.add_argument("--name-floor", default=None, help="bench/name_floor.c, built")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--rest-seconds", type=float, default=20)
    parser.add_argument("--settle", type=float, default=5)
    parser.add_argument("--cycles", type=int, default=10)
    parser.add_argument("--curve-cycles", type=int, default=1000)
    parser.add_argument("--release-every", type=int, default=100)
    parser.add_argument("--sample-every", type=int, default=50)
    parser.add_argument("--no-opengl", action="store_true", help="leave the OpenGL renderer out")
    parser.add_argument("--output", default=None)
    parser.add_argument("--json", default=None)
    parser.add_argument("--report-only", default=None, metavar="JSON")
    args = parser.parse_args()

    if args.report_only:
        with open(args.report_only) as f:
            data = json.load(f)
        write(data, args.output)
        return

    subjects = [Subject("software", "Stowly, software renderer (default)", [args.stowly], stowly=True)]
    if not args.no_opengl:
        subjects.append(Subject("opengl", "Stowly, OpenGL (Mesa)", [args.stowly],
                                {"QT_QUICK_BACKEND": "rhi", "QSG_RHI_BACKEND": "opengl"}, stowly=True))
    subjects.append(Subject("bare", "bare Qt tray icon (QSystemTrayIcon + menu)", [args.baretray]))
    if args.name_floor:
        subjects.append(Subject("namefloor", "floor: every process's name read once a second (no tray icon)",
                                [args.name_floor], tray=False))
    if shutil.which("parcellite"):
        subjects.append(Subject("parcellite", "parcellite (GTK 2 clipboard tray app)", ["parcellite", "-n"]))

    def leave(signum, _frame):
        raise SystemExit(128 + signum)

    # Ended from outside, the desktop and everything on it still go.
    for sig in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(sig, leave)

    started = datetime.datetime.utcnow()
    bed = TestBed().start(tray=True, accessibility=False)
    data = {"started": started.isoformat(), "rounds": args.rounds, "cycles": args.cycles,
            "release_every": args.release_every, "sample_every": args.sample_every,
            "subjects": [{"key": s.key, "label": s.label, "stowly": s.stowly} for s in subjects], "runs": {}}
    try:
        for i in range(REST_APPS):
            # A shell without start-up files: the machine's own rc files (version managers
            # and the like) would otherwise keep starting processes beside the measurement.
            bed.spawn_app(["xterm", "-geometry", f"60x10+{20 * i}+{40 + 15 * i}", "-e", "bash", "--norc", "--noprofile"])
        bed.wait_for(lambda: len(bed.client_windows()) >= REST_APPS, "the xterms", 60)
        if process_count() < REST_PROCESSES:
            # Idle processes in one group, which the desktop ends as one.
            n = REST_PROCESSES - process_count() - 2
            bed.spawn("idle", ["bash", "-c", f"for i in $(seq {n}); do sleep 1000000 & done; wait"])
            bed.wait_for(lambda: process_count() >= REST_PROCESSES - 5, "the idle processes", 30)
        data["processes"] = process_count()
        for r in range(args.rounds):
            order = subjects if r % 2 == 0 else list(reversed(subjects))
            for s in order:
                log(f"round {r + 1}: {s.label}")
                m = measure(bed, s, f"{s.key}-{r}", args)
                data["runs"].setdefault(s.key, []).append(m)
                log(f"  never opened {mib(m['never']['rss_kb']):.1f}/{mib(m['never']['anon_kb']):.1f} MiB, "
                    f"after {mib(m['after']['rss_kb']):.1f}/{mib(m['after']['anon_kb']):.1f} MiB, "
                    f"cpu {m['never']['cpu_percent']:.3f}/{m['after']['cpu_percent']:.3f} %, "
                    f"frames {[f['ms'] for f in m['frames']]}")
        if args.curve_cycles > 0:
            c = curve(bed, subjects[0], args)
            c["label"] = subjects[0].label
            data["curve"] = c
            data["curve_frames"] = {subjects[0].key: frame_times(bed, "curve")}
    finally:
        bed.stop()
    if args.json:
        with open(args.json, "w") as f:
            json.dump(data, f, indent=1)
    write(data, args.output)


def write(data, output):
    text = report(data)
    print(text)
    if output:
        with open(output, "w") as f:
            f.write("# Stowly at rest\n\nProduced by `scripts/bench-rest`.\n\n" + text + "\n\n" + NOTES)


NOTES = """How to read it:

- Resident is `VmRSS` and private is `RssAnon` from `/proc/PID/status`, read at the end of each
  rest interval; CPU is the scheduler's run time of all the process's threads
  (`/proc/PID/task/TID/schedstat`, in nanoseconds) over the interval, with Stowly's
  one-second refresh running and nothing else happening on the display.
- An open/close cycle is a click on the tray icon, the panel on screen, and a second click
  that closes it; for the other tray apps, a right click that opens the tray menu and Escape.
  The second measurement starts once a closed panel has released its view (a few seconds).
- The click-to-frame time comes from Stowly's log (`QT_LOGGING_RULES=stowly.panel.debug=true`):
  from the handling of the click to the first frame the panel's window presented.
"""

if __name__ == "__main__":
    main()
