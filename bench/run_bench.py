#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""Times Stowly's hot paths beside the floors and other tools, on a private test bed.

Started by scripts/bench after it has built everything into BUILD. Per configuration
(processes x windows) it runs rounds; each round runs the floors, our benchmarks and the
other tools one after the other, in an order that flips every round, so that each figure has
a neighbour measured under the same load. Ratios are the median of the per-round ratios.
Everything this script starts is its own child and ends on every way out.
"""

import argparse
import ctypes
import datetime
import json
import os
import platform
import re
import signal
import statistics
import subprocess
import sys
import time

TARGET_CLASS = "xterm"
TARGETS = 40
XDOTOOL = "xdotool search --class xterm windowminimize %@"
REST_APPS = 20
REST_PROCESSES = 200
# The desktop test bed and program driver of the end-to-end tests, reused for the rest case.
E2E_DIR = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "ui", "e2e")


def log(*args):
    print("[bench]", *args, file=sys.stderr, flush=True)


_libc = ctypes.CDLL(None, use_errno=True)


def die_with_parent():
    """In a child before exec: end it when this script ends, however it ends."""
    _libc.prctl(1, signal.SIGTERM)   # PR_SET_PDEATHSIG


def process_count():
    return sum(1 for name in os.listdir("/proc") if name.isdigit())


class TestBed:
    """Xvfb, openbox, xterms, idle dialog windows and idle processes, all children of ours."""

    def __init__(self, build):
        self.build = build
        self.helper = os.path.join(build, "bench", "stowly_bench_windows")
        self.xvfb = None
        self.wm = None
        self.xterms = []
        self.farms = []        # (process, window count)
        self.idlers = []       # (process, process count)
        self.others = []
        self.env = dict(os.environ)
        self.env.pop("WAYLAND_DISPLAY", None)

    # -- lifetime ---------------------------------------------------------------
    def start(self):
        read_end, write_end = os.pipe()
        self.xvfb = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-nolisten", "tcp", "-screen", "0", "1920x1080x24",
             "-maxclients", "512", "-noreset"],
            pass_fds=(write_end,), preexec_fn=die_with_parent, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        number = b""
        with os.fdopen(read_end, "rb") as pipe:
            while not number.endswith(b"\n"):
                chunk = pipe.read(1)
                if not chunk:
                    raise RuntimeError("Xvfb did not start")
                number += chunk
        self.env["DISPLAY"] = ":" + number.decode().strip()
        log("display", self.env["DISPLAY"])
        self.wm = self.spawn(["openbox", "--sm-disable"])
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            out = subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=self.env,
                                 capture_output=True, text=True).stdout
            if "window id" in out:
                return
            time.sleep(0.05)
        raise RuntimeError("openbox did not start")

    def spawn(self, args, **kwargs):
        return subprocess.Popen([str(a) for a in args], env=self.env, preexec_fn=die_with_parent, stdin=subprocess.DEVNULL,
                                stdout=kwargs.pop("stdout", subprocess.DEVNULL),
                                stderr=subprocess.DEVNULL, **kwargs)

    @staticmethod
    def end(process, grace=3.0):
        if process is None or process.poll() is not None:
            if process is not None:
                process.wait()
            return
        process.terminate()
        try:
            process.wait(timeout=grace)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()

    def stop(self):
        for process in self.others:
            self.end(process)
        for process, _ in self.idlers:
            self.end(process)
        for process, _ in self.farms:
            self.end(process)
        for process in self.xterms:
            self.end(process)
        self.end(self.wm)
        self.end(self.xvfb)
        self.others, self.idlers, self.farms, self.xterms = [], [], [], []
        self.wm = self.xvfb = None

    # -- contents ----------------------------------------------------------------
    def helper_out(self, *args, timeout=120):
        return subprocess.run([self.helper, *map(str, args)], env=self.env, capture_output=True, text=True,
                              timeout=timeout)

    def window_count(self):
        return int(self.helper_out("clients").stdout.strip() or 0)

    def set_xterms(self, count):
        self.xterms = [p for p in self.xterms if p.poll() is None]
        while len(self.xterms) > count:
            self.end(self.xterms.pop())
        while len(self.xterms) < count:
            # A shell without start-up files: the machine's own rc files (version managers
            # and the like) would otherwise keep starting processes beside the measurement.
            self.xterms.append(self.spawn(["xterm", "-geometry", "60x10", "-e", "bash", "--norc", "--noprofile"]))
        result = self.helper_out("wait-class", TARGET_CLASS, count, 60)
        if result.returncode != 0:
            raise RuntimeError(f"only {result.stdout.strip()} of {count} xterm windows appeared")
        # The window manager may still be placing and focusing the newest ones.
        time.sleep(0.3)

    def set_extra_windows(self, count, per_process=20):
        if sum(n for _, n in self.farms) == count:
            return
        for process, _ in self.farms:
            self.end(process)
        self.farms = []
        while sum(n for _, n in self.farms) < count:
            n = min(per_process, count - sum(n for _, n in self.farms))
            process = self.spawn([self.helper, "windows", n, "dialog"], stdout=subprocess.PIPE, text=True)
            if process.stdout.readline().strip() != "ready":
                raise RuntimeError("the idle windows did not appear")
            self.farms.append((process, n))

    def set_processes(self, target):
        current = process_count()
        while current > target + 5 and self.idlers:
            self.end(self.idlers.pop()[0])
            current = process_count()
        if current < target:
            n = target - current - 1   # the helper itself is one of them
            process = self.spawn([self.helper, "idle", n], stdout=subprocess.PIPE, text=True)
            if process.stdout.readline().strip() != "ready":
                raise RuntimeError("the idle processes did not start")
            self.idlers.append((process, n))
        return process_count()


def wait_for_quiet(limit, patience=20):
    """Waits (up to `patience` s) while the 1-minute load is above `limit`; answers the load."""
    deadline = time.monotonic() + patience
    load = os.getloadavg()[0]
    while load > limit and time.monotonic() < deadline:
        time.sleep(5)
        load = os.getloadavg()[0]
    return load


def parse_floor(text, label):
    match = re.search(re.escape(label) + r"\s+min=\s*(\d+)\s+median=\s*(\d+)", text)
    if not match:
        raise RuntimeError(f"no '{label}' figure in:\n{text}")
    return float(match.group(2))


class Runner:
    def __init__(self, bed, build, args):
        self.bed = bed
        self.build = build
        self.args = args
        self.bench = os.path.join(build, "bench", "stowly_bench")
        self.floors = os.path.join(build, "floors")
        self.have_backend = "runningApps" in subprocess.run(
            [self.bench, "--benchmark_list_tests=true"], capture_output=True, text=True).stdout

    def run(self, args, timeout=600):
        result = subprocess.run(args, env=self.bed.env, capture_output=True, text=True, timeout=timeout)
        if result.returncode != 0:
            raise RuntimeError(f"{args[0]} failed ({result.returncode}):\n{result.stdout}\n{result.stderr}")
        return result.stdout

    def ours(self, pattern, *extra):
        """Runs our benchmark program; answers {name: [per-repetition µs]} and counters."""
        out = self.run([self.bench, f"--benchmark_filter={pattern}", "--benchmark_format=json",
                        f"--target_class={TARGET_CLASS}", f"--targets={TARGETS}", *extra])
        data = json.loads(out)
        times, counters = {}, {}
        for entry in data["benchmarks"]:
            if entry.get("run_type") != "iteration":
                continue
            if entry.get("error_occurred"):
                raise RuntimeError(f"{entry['name']}: {entry.get('error_message')}")
            name = entry["run_name"].split("/")[0] if not entry["run_name"].startswith("command/") \
                else "/".join(entry["run_name"].split("/")[:2])
            scale = {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}[entry["time_unit"]]
            times.setdefault(name, []).append(entry["real_time"] * scale)
            for key in ("ours_us", "count", "apps"):
                if key in entry:
                    counters.setdefault(name + "." + key, []).append(entry[key])
        return times, counters

    def floor_refresh(self, cache=False):
        args = [os.path.join(self.floors, "refresh"), str(self.args.fast_reps)] + (["cache"] if cache else [])
        return float(re.search(r"median=(\d+)", self.run(args)).group(1))

    def xmin(self, *args):
        return self.run([os.path.join(self.floors, "xmin"), "-c", TARGET_CLASS, *args])

    # -- one configuration ---------------------------------------------------------
    def configuration(self, processes, windows):
        bed = self.bed
        bed.set_xterms(TARGETS)
        bed.set_extra_windows(windows - TARGETS)
        actual_processes = bed.set_processes(processes)
        actual_windows = bed.window_count()
        time.sleep(2)   # let the new clients finish starting before anything is timed
        log(f"configuration: {actual_processes} processes, {actual_windows} windows")
        rounds = []
        for r in range(self.args.rounds):
            load = wait_for_quiet(self.args.max_load)
            sample = {"load": load}
            steps = [self.step_floor_refresh, self.step_our_refresh, self.step_commands,
                     self.step_floor_minimize, self.step_our_minimize, self.step_xdotool]
            # Flip the order every round so that neither side always runs first.
            if r % 2:
                steps = [steps[1], steps[0], steps[2], steps[4], steps[3], steps[5]]
            for step in steps:
                step(sample)
            rounds.append(sample)
            log(f"  round {r + 1}: " + ", ".join(f"{k}={v:.0f}" for k, v in sample.items()
                                                   if isinstance(v, float) and k != "load")
                + f" (load {load:.2f})")
        closes = self.close_samples() if self.have_backend else []
        return {"processes": actual_processes, "windows": actual_windows, "rounds": rounds, "close": closes,
                "processes_after": process_count()}

    def step_floor_refresh(self, s):
        s["floor_refresh"] = self.floor_refresh()
        s["floor_refresh_cached"] = self.floor_refresh(cache=True)

    def step_our_refresh(self, s):
        if not self.have_backend:
            return
        times, counters = self.ours("^(runningApps|refreshSnapshot)/", f"--fast_reps={self.args.fast_reps}")
        s["runningApps"] = statistics.median(times["runningApps"])
        s["refreshSnapshot"] = statistics.median(times["refreshSnapshot"])
        s["apps"] = counters.get("refreshSnapshot.apps", [0])[-1]

    def step_commands(self, s):
        times, _ = self.ours("^command/", f"--command_reps={self.args.command_reps}")
        s["ps"] = statistics.median(times["command/ps"])
        s["smem"] = statistics.median(times["command/smem"])

    def step_floor_minimize(self, s):
        out = self.xmin("-r", str(self.args.window_reps), "batch")
        s["xmin_sent"] = parse_floor(out, "list+send+flush")
        s["xmin_applied"] = parse_floor(out, "until all HIDDEN")

    def step_our_minimize(self, s):
        if not self.have_backend:
            return
        times, counters = self.ours("^minimizeAllWindows/", f"--window_reps={self.args.window_reps}")
        s["minimize_applied"] = statistics.median(times["minimizeAllWindows"])
        s["minimize_ours"] = statistics.median(counters["minimizeAllWindows.ours_us"])

    def step_xdotool(self, s):
        out = self.xmin("-r", str(self.args.command_reps), "cmd", XDOTOOL)
        s["xdotool_applied"] = parse_floor(out, "until all HIDDEN")

    def close_samples(self):
        samples = []
        for _ in range(self.args.close_reps):
            self.bed.set_xterms(TARGETS)
            time.sleep(0.2)
            times, counters = self.ours("^closeAllWindows/")
            samples.append({"applied": times["closeAllWindows"][0], "ours": counters["closeAllWindows.ours_us"][0]})
        self.bed.set_xterms(TARGETS)
        return samples

    # -- at rest ---------------------------------------------------------------------
    def at_rest(self, seconds, program=None):
        """CPU and resident memory of the idle program with REST_APPS apps open, over `seconds`
        with the panel closed, then as long again with the panel open (opened by a click on
        the tray icon). Runs on the desktop test bed of the end-to-end tests (Xvfb, openbox,
        tint2 with its tray at the top), driven as those tests drive the program."""
        sys.path.insert(0, E2E_DIR)
        from testbed import TestBed as DesktopBed      # noqa: E402
        from stowlydriver import Stowly                # noqa: E402

        if program is None:
            program = next((p for p in (os.path.join(self.build, "bin", "stowly"),
                                        os.path.join(self.build, "src", "app", "stowly")) if os.path.exists(p)), "")
        real = os.path.exists(program)
        if not real:
            program = os.path.join(self.build, "bench", "stowly_bench_host")
        helper = self.bed.helper
        bed = DesktopBed().start(tray=real, accessibility=False)
        try:
            for i in range(REST_APPS):
                bed.spawn_app(["xterm", "-geometry", f"60x10+{20 * i}+{40 + 15 * i}", "-e", "bash", "--norc",
                               "--noprofile"])
            waited = subprocess.run([helper, "wait-class", TARGET_CLASS, str(REST_APPS), "60"], env=bed.env,
                                    capture_output=True, text=True, timeout=90)
            if waited.returncode != 0:
                raise RuntimeError(f"only {waited.stdout.strip()} of {REST_APPS} xterm windows appeared")
            if real:
                stowly = Stowly(bed, program).start()
                process = stowly.process
            else:
                process = bed.spawn("host", [program])
            time.sleep(5)   # start-up is not rest
            if process.poll() is not None:
                raise RuntimeError(f"{program} exited at once ({process.returncode})")
            # Others' processes come and go on a shared machine: top the count up once.
            if process_count() < REST_PROCESSES:
                bed.spawn("idle", [helper, "idle", str(REST_PROCESSES - process_count() - 1)])
                bed.wait_for(lambda: process_count() >= REST_PROCESSES - 5, "the idle processes", 30)
                time.sleep(1)
            closed = self.rest_sample(process.pid, seconds)
            closed["what"] = "panel closed"
            samples = [closed]
            if real:
                stowly.open_panel()
                time.sleep(5)   # opening, and the first refreshes that fill the list, are not rest
                opened = self.rest_sample(process.pid, seconds)
                if stowly.panel_window() is None:
                    raise RuntimeError("the panel closed while it was measured open")
                opened["what"] = "panel open"
                samples.append(opened)
            if process.poll() is not None:
                raise RuntimeError(f"{program} ended during the measurement ({process.returncode})")
            what = (f"{os.path.basename(program)} with its tray icon" if real else
                    "minimal host (QCoreApplication + AppModel over the Linux backend; no stowly program was found)")
            return {"what": what, "apps": REST_APPS, "processes": process_count(), "samples": samples}
        finally:
            bed.stop()

    @staticmethod
    def rest_sample(pid, seconds):
        """CPU time (utime + stime) over `seconds`, and resident memory at their end."""
        ticks = os.sysconf("SC_CLK_TCK")

        def cpu():
            with open(f"/proc/{pid}/stat") as f:
                fields = f.read().rsplit(")", 1)[1].split()
            return (int(fields[11]) + int(fields[12])) / ticks

        c0, t0 = cpu(), time.monotonic()
        time.sleep(seconds)
        c1, t1 = cpu(), time.monotonic()
        with open(f"/proc/{pid}/status") as f:
            status = f.read()

        def kb(field):
            return int(re.search(field + r":\s+(\d+)", status).group(1))

        return {"seconds": t1 - t0, "cpu_percent": 100 * (c1 - c0) / (t1 - t0), "rss_kb": kb("VmRSS"),
                "hwm_kb": kb("VmHWM"), "anon_kb": kb("RssAnon")}


# -- the table ---------------------------------------------------------------------------

def med(values):
    values = [v for v in values if v is not None]
    return statistics.median(values) if values else None


def fmt_time(us):
    if us is None:
        return "—"
    if us >= 1000:
        return f"{us / 1000:.2f} ms" if us < 100000 else f"{us / 1000:.0f} ms"
    return f"{us:.0f} µs"


def fmt_ratio(r):
    return "—" if r is None else f"{r:.2f}×"


def round_ratio(rounds, a, b):
    return med([s[a] / s[b] for s in rounds if s.get(a) and s.get(b)])


def build_table(results, rest):
    header = ("| Operation | Processes | Windows | Ours (median) | Floor (median) | Ours / floor "
              "| Other tools (median; their time / ours) |")
    lines = [header, "|" + "---|" * 7]
    for cfg in results:
        rounds = cfg["rounds"]
        p, w = cfg["processes"], cfg["windows"]
        floor = med([s["floor_refresh"] for s in rounds])
        cached = med([s["floor_refresh_cached"] for s in rounds])
        for op in ("runningApps", "refreshSnapshot"):
            ours = med([s.get(op) for s in rounds])
            tools = []
            for tool in ("ps", "smem"):
                t = med([s[tool] for s in rounds])
                tools.append(f"{'ps -eo pid,rss,comm' if tool == 'ps' else 'smem'} {fmt_time(t)} "
                             f"({fmt_ratio(round_ratio(rounds, tool, op))})")
            label = "WindowMinimizer::runningApps()" if op == "runningApps" else "AppModel::refreshSnapshot()"
            lines.append(f"| {label} | {p} | {w} | {fmt_time(ours)} | refresh {fmt_time(floor)} "
                         f"(kept-open fds {fmt_time(cached)}) | {fmt_ratio(round_ratio(rounds, op, 'floor_refresh'))}"
                         f" (kept-open: {fmt_ratio(round_ratio(rounds, op, 'floor_refresh_cached'))}) "
                         f"| {'; '.join(tools)} |")
        ours_side = med([s.get("minimize_ours") for s in rounds])
        lines.append(f"| minimize all {TARGETS} windows: our side | {p} | {w} | {fmt_time(ours_side)} "
                     f"| xmin list+send {fmt_time(med([s['xmin_sent'] for s in rounds]))} "
                     f"| {fmt_ratio(round_ratio(rounds, 'minimize_ours', 'xmin_sent'))} | |")
        applied = med([s.get("minimize_applied") for s in rounds])
        lines.append(f"| minimize all {TARGETS} windows: until the WM applied them | {p} | {w} | {fmt_time(applied)} "
                     f"| xmin batch {fmt_time(med([s['xmin_applied'] for s in rounds]))} "
                     f"| {fmt_ratio(round_ratio(rounds, 'minimize_applied', 'xmin_applied'))} "
                     f"| `{XDOTOOL}` {fmt_time(med([s['xdotool_applied'] for s in rounds]))} "
                     f"({fmt_ratio(round_ratio(rounds, 'xdotool_applied', 'minimize_applied'))}) |")
        if cfg["close"]:
            lines.append(f"| close all {TARGETS} windows: our side | {p} | {w} "
                         f"| {fmt_time(med([c['ours'] for c in cfg['close']]))} | — | — | |")
            lines.append(f"| close all {TARGETS} windows: until gone from the client list | {p} | {w} "
                         f"| {fmt_time(med([c['applied'] for c in cfg['close']]))} | — | — | |")
    growth = growth_lines(results)
    extra = []
    if growth:
        extra += ["", "Growth from fewer to more processes (same window count), cost per added process:", "",
                  "| Operation | Windows | Processes | Ours per process | Floor per process | Ours / floor |",
                  "|---|---|---|---|---|---|"] + growth
    if rest:
        extra += rest_lines(rest)
    return "\n".join(lines + extra)


def rest_lines(rest):
    samples = rest.get("samples")
    if samples is None:   # a saved run from before the panel-open case
        samples = [dict(rest, what="panel closed")]
    seconds = max(s["seconds"] for s in samples)
    lines = ["", f"At rest ({rest['what']}; {rest['apps']} apps open, {rest['processes']} processes, "
             f"{seconds:.0f} s each):", "",
             "| Stowly at rest | CPU (% of one core) | Resident | of it private (RssAnon) | Peak resident |",
             "|---|---|---|---|---|"]
    for s in samples:
        lines.append(f"| {s['what']} | {s['cpu_percent']:.3f} % | {s['rss_kb'] / 1024:.1f} MiB "
                     f"| {s['anon_kb'] / 1024:.1f} MiB | {s['hwm_kb'] / 1024:.1f} MiB |")
    return lines


def growth_lines(results):
    out = []
    by_windows = {}
    for cfg in results:
        by_windows.setdefault(cfg["windows"], []).append(cfg)
    for w, cfgs in by_windows.items():
        if len(cfgs) < 2:
            continue
        lo, hi = min(cfgs, key=lambda c: c["processes"]), max(cfgs, key=lambda c: c["processes"])
        dp = hi["processes"] - lo["processes"]
        if dp <= 0:
            continue
        floor_lo, floor_hi = med([s["floor_refresh"] for s in lo["rounds"]]), med([s["floor_refresh"] for s in hi["rounds"]])
        floor_per = (floor_hi - floor_lo) / dp
        for op in ("runningApps", "refreshSnapshot"):
            a, b = med([s.get(op) for s in lo["rounds"]]), med([s.get(op) for s in hi["rounds"]])
            if a is None or b is None:
                continue
            ours_per = (b - a) / dp
            out.append(f"| {op} | {w} | {lo['processes']} → {hi['processes']} | {ours_per:.1f} µs "
                       f"| {floor_per:.1f} µs | {fmt_ratio(ours_per / floor_per if floor_per > 0 else None)} |")
    return out


def machine_note(results, started):
    cpu = "unknown CPU"
    try:
        for line in open("/proc/cpuinfo"):
            if line.startswith("model name"):
                cpu = line.split(":", 1)[1].strip()
                break
    except OSError:
        pass
    loads = [s["load"] for cfg in results for s in cfg["rounds"]]
    return (f"Run of {started:%Y-%m-%d %H:%M} UTC on {os.cpu_count()} × {cpu}, Linux {platform.release()}; "
            f"1-minute load during the rounds {min(loads):.2f}–{max(loads):.2f}. "
            "Test bed: Xvfb + openbox, 40 xterm windows (the targets of the bulk actions), the rest idle "
            "dialog windows of our helper (walked but skipped by both bulk actions), idle processes to reach "
            "the process count. Counts are of the whole machine (/proc) and of _NET_CLIENT_LIST.")


READING_NOTES = """How to read it:

- Floors are the C programs in `../shared/floors/` (`refresh`: one whole app-list-and-memory refresh,
  open/read/close of every `/proc/PID/status`, or with kept-open files; `xmin`: one batch of ICCCM
  iconify requests). They run in the same rounds as our benchmarks, alternating with them.
- "Our side" of a bulk action is the time until `WindowMinimizer::minimizeAllWindows()` /
  `closeAllWindows()` returns: listing the apps, reading their windows (the display changed since the
  last read: the windows were just restored or opened) and one request per window. "Until applied" runs
  until every target window carries `_NET_WM_STATE_HIDDEN`, or has left `_NET_CLIENT_LIST` for close.
  There is no floor for closing.
- The other tools are timed whole, as a user runs them once; their ratio is their time over ours.
- At rest: CPU time of the program (utime + stime from `/proc/PID/stat`) over the interval, with its
  one-second refresh running and nothing else happening on the display; resident memory at its end.
  It runs on the desktop of the end-to-end tests (Xvfb, openbox, tint2 with a tray): first with the
  panel closed, then, after a click on the tray icon, with the panel open for as long again.
- Stowly at rest beside a bare Qt tray icon and a Debian tray app, the renderer choice, the
  click-to-first-frame time and memory over many open/close cycles: `benchmarks-at-rest.md`
  (`scripts/bench-rest`).
"""


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--output", default=None, help="Markdown file to write the table into")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--fast-reps", type=int, default=20)
    parser.add_argument("--window-reps", type=int, default=8)
    parser.add_argument("--command-reps", type=int, default=3)
    parser.add_argument("--close-reps", type=int, default=3)
    parser.add_argument("--processes", default="200,700")
    parser.add_argument("--windows", default="45,200")
    parser.add_argument("--rest-seconds", type=int, default=60)
    parser.add_argument("--rest-program", default=None,
                        help="the program to measure at rest (default: BUILD/bin/stowly, else a minimal host)")
    parser.add_argument("--max-load", type=float, default=3.0)
    parser.add_argument("--report-only", default=None, metavar="JSON",
                        help="write the table of an earlier run (BUILD/bench-results.json) without measuring")
    args = parser.parse_args()

    if args.report_only:
        with open(args.report_only) as f:
            saved = json.load(f)
        write_report(saved["results"], saved["rest"], datetime.datetime.fromisoformat(saved["started"]), args.output)
        return

    def leave(signum, _frame):
        raise SystemExit(128 + signum)

    for sig in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(sig, leave)

    started = datetime.datetime.utcnow()
    bed = TestBed(args.build)
    results, rest = [], None
    try:
        bed.start()
        runner = Runner(bed, args.build, args)
        if not runner.have_backend:
            log("the Linux backend is not built: only the floors and the other tools run")
        for w in map(int, args.windows.split(",")):
            plist = list(map(int, args.processes.split(",")))
            # Walk the process counts up and down alternately so fewer idle processes restart.
            if len(results) // max(1, len(plist)) % 2:
                plist.reverse()
            for p in plist:
                results.append(runner.configuration(p, w))
        if args.rest_seconds > 0 and runner.have_backend:
            bed.stop()   # the rest case has a desktop of its own; this one's clients would only add noise
            rest = runner.at_rest(args.rest_seconds, args.rest_program)
    finally:
        bed.stop()

    with open(os.path.join(args.build, "bench-results.json"), "w") as f:
        json.dump({"results": results, "rest": rest, "started": started.isoformat()}, f, indent=1)
    write_report(results, rest, started, args.output)


def write_report(results, rest, started, output):
    table = build_table(results, rest)
    print(table)
    if output:
        with open(output, "w") as f:
            f.write("# Benchmarks\n\n")
            f.write("Produced by `scripts/bench`. Every figure is a median; ratios are medians of the ratios "
                    "measured side by side in each round, because the machine is shared and noisy.\n\n")
            f.write(machine_note(results, started) + "\n\n")
            f.write(table + "\n\n")
            f.write(READING_NOTES)


if __name__ == "__main__":
    main()
