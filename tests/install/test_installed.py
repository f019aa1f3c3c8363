#!/usr/bin/python3

# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""The installed program on a private desktop: it shows up in the tray, a second start opens
the first one's panel, a start after a crash works, and every command-line command acts on
real apps, checked from outside through the X server and /proc.

Usage: test_installed.py STOWLY_BINARY"""

import json
import os
import signal
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "ui", "e2e"))
from testbed import TestBed          # noqa: E402
from stowlydriver import Stowly      # noqa: E402
from processes import alive, check, instances_of, run_script   # noqa: E402


def scenario(bed, binary):
    def stowly(*args):
        return bed.run([binary, *args])

    xterms = [bed.spawn_app(["xterm", "-geometry", f"40x8+{100 + 90 * i}+{100 + 70 * i}"]) for i in range(3)]
    bed.wait_for(lambda: all(bed.windows_of_pid(x.pid) for x in xterms), "the xterms' windows", 30)
    pids = [x.pid for x in xterms]
    windows = {pid: [w for w in bed.windows_of_pid(pid) if w in bed.client_windows()] for pid in pids}
    bed.wait_for(lambda: all(windows[p] or [w for w in bed.windows_of_pid(p) if w in bed.client_windows()]
                             for p in pids), "the xterms as clients", 10)
    windows = {pid: [w for w in bed.windows_of_pid(pid) if w in bed.client_windows()] for pid in pids}

    # ---- the tray program and one instance ------------------------------------------
    # A preference file that a crash or a hand edit left behind: what Stowly cannot read
    # gives the defaults, and reading leaves the file as it is.
    folder = os.path.join(bed.env["XDG_CONFIG_HOME"], "Stowly")
    os.makedirs(folder, exist_ok=True)
    preferences = os.path.join(folder, "Stowly.conf")
    garbage = (b"\xff\xfe[General]\ndefaultAction=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x8NotAType)\n"
               b"enabledActions=@Rect(1 2 3 4)\nnote=kept\n[Broken\nx=\"cut off")
    with open(preferences, "wb") as f:
        f.write(garbage)
    first = Stowly(bed, binary).start()
    check(first.tray_icon() is not None, "the installed program puts its icon in the tray")
    time.sleep(1.0)
    second = stowly()
    check(second.returncode == 0, f"a second start exits 0 (got {second.returncode}: {second.stderr.strip()})")
    panel = bed.wait_for_value(first.panel_window, "the first instance's panel", 15)
    check(panel is not None, "a second start opens the running one's panel")
    check(instances_of(binary) == [first.pid], f"one process remains: {instances_of(binary)}")
    tiles = ["Minimize All Windows", "Hide All Apps", "Close All Windows", "Force Quit All Apps"]
    bed.wait_for(lambda: first.find(tiles[0], "push button") is not None, "the panel's tiles", 15)
    check(all(first.find(tile, "push button") is not None for tile in tiles),
          "unreadable preferences give the default: every action is offered")
    with open(preferences, "rb") as f:
        check(f.read() == garbage, "and the preference file is left as it was")

    # ---- reading ----------------------------------------------------------------------
    listed = stowly("list", "--json")
    check(listed.returncode == 0, "list --json exits 0")
    apps = json.loads(listed.stdout or "[]")
    listed_pids = {app["pid"] for app in apps}
    check(set(pids) <= listed_pids, f"list names every xterm: {sorted(listed_pids)}")
    check(first.pid not in listed_pids, "list leaves Stowly itself out")
    names = {app["pid"]: app["name"] for app in apps}
    table = stowly("list")
    check(table.returncode == 0 and all(str(p) in table.stdout for p in pids) and "PID" in table.stdout,
          "list prints a table with the pids")

    # ---- bulk commands -------------------------------------------------------------
    result = stowly("minimize-all")
    check(result.returncode == 0 and result.stdout.startswith("Minimized ") and result.stdout.rstrip().endswith(
        "windows."), f"minimize-all says what it did: {result.stdout.strip()!r} {result.returncode}")
    check(all(bed.is_iconic(w) for p in pids for w in windows[p]), "every xterm window is minimized (WM_STATE)")
    check(bed.is_iconic(panel) is False and first.pid and alive(first.pid), "Stowly is left alone")
    again = stowly("minimize-all")
    check(again.returncode == 1 and again.stderr.strip() == "No minimizable windows were found.",
          f"nothing left to minimize exits 1 with the panel's sentence: {again.stderr.strip()!r}")

    # ---- one app --------------------------------------------------------------------
    target = pids[0]
    opened = stowly("open", str(target))
    check(opened.returncode == 0 and opened.stdout.strip() == f"Opened {names.get(target)}.",
          f"open PID: {opened.stdout.strip()!r}")
    bed.wait_for(lambda: not any(bed.is_iconic(w) for w in windows[target]), "the opened xterm to map", 10)
    check(all(bed.is_iconic(w) for w in windows[pids[1]]), "open leaves the other apps minimized")

    if len({names.get(p) for p in pids}) == 1:
        ambiguous = stowly("close", names[pids[0]].lower())
        check(ambiguous.returncode == 2 and all(str(p) in ambiguous.stderr for p in pids),
              f"a name of several apps lists them: {ambiguous.stderr.strip()!r}")
        check(all(alive(p) for p in pids), "and acts on none")
    not_app = stowly("open", "1")
    check(not_app.returncode == 1 and "not an open app" in not_app.stderr, "a pid that is not an app exits 1")

    hidden = stowly("hide-all")
    check(hidden.returncode == 0 and hidden.stdout.startswith("Hid "), f"hide-all: {hidden.stdout.strip()!r}")

    closed = stowly("close", str(pids[0]))
    check(closed.returncode == 0 and closed.stdout.startswith("Requested normal close for "),
          f"close PID: {closed.stdout.strip()!r}")
    bed.wait_for(lambda: not alive(pids[0]), "the closed xterm to end", 10)

    # ---- bad usage changes nothing ----------------------------------------------------
    for argv in (["frobnicate"], ["--frobnicate"], ["force-quit-all"], ["open"], ["list", "--yes"]):
        bad = stowly(*argv)
        check(bad.returncode == 2 and bad.stderr.startswith("stowly: ") and not bad.stdout,
              f"{' '.join(argv)} is bad usage with a reason: {bad.stderr.strip().splitlines()[:1]}")
    check(alive(pids[1]) and alive(pids[2]), "bad usage ended nothing")

    forced = stowly("force-quit", str(pids[1]))
    check(forced.returncode == 0 and forced.stdout.startswith("Force quit sent to "),
          f"force-quit PID: {forced.stdout.strip()!r}")
    bed.wait_for(lambda: not alive(pids[1]), "the force quit xterm to end", 10)

    everything = stowly("force-quit-all", "--yes")
    check(everything.returncode == 0 and everything.stdout.strip() == "Force quit sent to 1 app.",
          f"force-quit-all --yes: {everything.stdout.strip()!r}")
    bed.wait_for(lambda: not alive(pids[2]), "the last xterm to end", 10)
    check(alive(first.pid), "Stowly survives its own force-quit-all")
    wm = [p for name, p in bed.processes if name in ("openbox", "tint2")]
    check(all(p.poll() is None for p in wm), "the window manager and the panel survive")
    nothing = stowly("close-all")
    check(nothing.returncode == 1 and nothing.stderr.strip() == "No closable windows were found.",
          f"close-all with nothing open exits 1: {nothing.stderr.strip()!r}")

    # ---- a crash leaves nothing in the way ----------------------------------------------
    os.kill(first.pid, signal.SIGKILL)
    bed.wait_for(lambda: not alive(first.pid), "the killed instance to go", 10)
    restarted = Stowly(bed, binary).start()
    check(restarted.tray_icon() is not None, "after SIGKILL a new start reaches the tray")
    time.sleep(1.0)
    once_more = stowly()
    check(once_more.returncode == 0, "and a further start hands over to it")
    check(bed.wait_for_value(restarted.panel_window, "the restarted panel", 15) is not None,
          "the restarted instance opens its panel")
    check(instances_of(binary) == [restarted.pid], "still one process")


if __name__ == "__main__":
    run_script(__doc__, lambda: TestBed().start(), scenario)
