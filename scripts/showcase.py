#!/usr/bin/python3

# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""Runs the real Stowly on a private demo desktop (Xvfb, openbox, a tint2 tray, real apps).

  showcase.py STOWLY demo OUT.png        open the panel from the tray, screenshot the desktop
  showcase.py STOWLY screenshots DIR     DIR/panel.png and DIR/settings.png for the README
  showcase.py STOWLY measure [SECONDS]   Stowly's CPU time and memory at rest, 20 apps open

Everything it starts is ended before it returns."""

import os
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "ui", "e2e"))
from testbed import TestBed          # noqa: E402
from stowlydriver import Stowly      # noqa: E402

DEMO_APPS = [
    ["xterm", "-geometry", "64x16+60+90", "-title", "Terminal"],
    ["xterm", "-geometry", "56x12+220+330", "-title", "Build log"],
    ["xclock", "-geometry", "160x160+700+120"],
    ["xlogo", "-geometry", "140x140+560+420"],
    ["xeyes", "-geometry", "150x100+120+560"],
]


def greyscale_text(bed):
    """Asks Qt (through the Xft resources it reads from the root window) for greyscale
    anti-aliasing, so that pictures show no coloured subpixel fringes."""
    resources = "Xft.antialias:\t1\nXft.rgba:\tnone\nXft.hintstyle:\thintslight\n"
    bed.run(["xprop", "-root", "-format", "RESOURCE_MANAGER", "8s", "-set", "RESOURCE_MANAGER", resources])


def start_demo(bed, binary, apps):
    greyscale_text(bed)
    for argv in apps:
        bed.spawn_app(argv)
    bed.wait_for(lambda: len(bed.client_windows()) >= len(apps), "the demo apps' windows", 30)
    stowly = Stowly(bed, binary).start()
    time.sleep(2)   # the tray reports the icon's place a moment after embedding it
    return stowly


def demo(binary, out):
    bed = TestBed().start()
    try:
        stowly = start_demo(bed, binary, DEMO_APPS)
        stowly.open_panel()
        time.sleep(1.5)
        bed.screenshot(out)
        print(f"Stowly ran on a private desktop ({bed.display}); its panel is in {out}")
    finally:
        bed.stop()


def screenshots(binary, directory):
    os.makedirs(directory, exist_ok=True)
    bed = TestBed().start()
    try:
        stowly = start_demo(bed, binary, DEMO_APPS)
        panel = stowly.open_panel()
        time.sleep(1.5)
        bed.screenshot(os.path.join(directory, "panel.png"), window=str(panel))
        stowly.press("Settings", "push button")
        settings = bed.wait_for_value(stowly.settings_window, "the settings window", 15)
        time.sleep(1.5)
        bed.screenshot(os.path.join(directory, "settings.png"), window=str(settings))
        print(f"Wrote {directory}/panel.png and {directory}/settings.png")
    finally:
        bed.stop()


def proc_sample(pid):
    with open(f"/proc/{pid}/stat") as f:
        fields = f.read().rsplit(")", 1)[1].split()
    ticks = int(fields[11]) + int(fields[12])   # utime + stime
    rss = 0
    with open(f"/proc/{pid}/status") as f:
        for line in f:
            if line.startswith("VmRSS:"):
                rss = int(line.split()[1])
    return ticks, rss


def measure(binary, seconds):
    apps = [["xterm", "-geometry", f"40x8+{20 * i}+{40 + 15 * i}"] for i in range(10)]
    apps += [["xlogo", "-geometry", f"100x100+{600 + 20 * i}+{60 + 20 * i}"] for i in range(10)]
    bed = TestBed().start(accessibility=False)
    try:
        stowly = start_demo(bed, binary, apps)
        time.sleep(5)   # past start-up
        hz = os.sysconf("SC_CLK_TCK")
        ticks0, rss0 = proc_sample(stowly.pid)
        start = time.monotonic()
        peak = rss0
        while time.monotonic() - start < seconds:
            time.sleep(1)
            peak = max(peak, proc_sample(stowly.pid)[1])
        ticks1, rss1 = proc_sample(stowly.pid)
        elapsed = time.monotonic() - start
        cpu = (ticks1 - ticks0) / hz
        print(f"apps open: {len(apps)} (panel closed)")
        print(f"interval: {elapsed:.1f} s")
        print(f"CPU time: {cpu:.2f} s = {100 * cpu / elapsed:.2f} % of one core")
        print(f"VmRSS: start {rss0 / 1024:.1f} MiB, end {rss1 / 1024:.1f} MiB, peak {peak / 1024:.1f} MiB")
    finally:
        bed.stop()


if __name__ == "__main__":
    if len(sys.argv) < 3:
        print(__doc__)
        sys.exit(2)
    binary, mode = os.path.abspath(sys.argv[1]), sys.argv[2]
    if mode == "demo" and len(sys.argv) == 4:
        demo(binary, os.path.abspath(sys.argv[3]))
    elif mode == "screenshots" and len(sys.argv) == 4:
        screenshots(binary, os.path.abspath(sys.argv[3]))
    elif mode == "measure":
        measure(binary, float(sys.argv[3]) if len(sys.argv) > 3 else 60.0)
    else:
        print(__doc__)
        sys.exit(2)
