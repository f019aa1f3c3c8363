#!/usr/bin/python3

# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""The whole program on a private desktop with a tray: open the panel from the tray icon,
minimize every window through assistive technology, switch an action off in the settings
window and see the panel follow, and quit with Ctrl+Q.

Usage: test_end_to_end.py STOWLY_BINARY SCREENSHOT_DIR"""

import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from testbed import TestBed          # noqa: E402
from stowlydriver import Stowly      # noqa: E402

failures = []


def check(condition, what):
    print(("ok   " if condition else "FAIL ") + what, flush=True)
    if not condition:
        failures.append(what)
    return condition


def main(binary, shots):
    os.makedirs(shots, exist_ok=True)
    bed = TestBed().start()
    try:
        xterms = [bed.spawn_app(["xterm", "-geometry", f"50x12+{80 + 70 * i}+{120 + 60 * i}"]) for i in range(3)]
        bed.wait_for(lambda: all(bed.windows_of_pid(x.pid) for x in xterms), "the xterms' windows", 30)
        terminal_windows = [w for x in xterms for w in bed.windows_of_pid(x.pid) if w in bed.client_windows()]
        bed.wait_for(lambda: len([w for w in terminal_windows if w in bed.client_windows()]) == 3, "three clients", 10)

        stowly = Stowly(bed, binary).start()
        time.sleep(1.5)   # the tray reports the icon's place a moment after embedding it
        icon = stowly.click_tray_icon()
        panel = bed.wait_for_value(stowly.panel_window, "the panel", 15)
        bed.screenshot(os.path.join(shots, "panel-open.png"))
        x, y, width, height = bed.geometry(panel)
        icon_x, icon_y, icon_w, icon_h = icon
        check(width == 340, f"panel is 340 wide (got {width})")
        check(y >= icon_y + icon_h, f"panel top {y} is under the icon's bottom {icon_y + icon_h}")
        check(x <= icon_x + icon_w and x + width >= icon_x, "panel spans the icon horizontally")
        state = bed.xprop("-id", str(panel), "_NET_WM_STATE")
        check("_NET_WM_STATE_SKIP_TASKBAR" in state and "_NET_WM_STATE_SKIP_PAGER" in state,
              "panel is kept out of the taskbar and pager")

        check(stowly.find("Open Apps (3)") is not None, "heading reads Open Apps (3)")
        stowly.press("Minimize All Windows", "push button")
        bed.wait_for(lambda: all(bed.is_iconic(w) for w in terminal_windows), "the xterms to be iconic", 10)
        check(all(bed.is_iconic(w) for w in terminal_windows), "every xterm is iconic (WM_STATE, xprop)")
        message = bed.wait_for_value(lambda: stowly.find("Minimized 3 windows."), "the result line", 10)
        check(message is not None, "result line reads 'Minimized 3 windows.'")
        bed.screenshot(os.path.join(shots, "after-minimize.png"))

        stowly.press("Settings", "push button")
        settings = bed.wait_for_value(stowly.settings_window, "the settings window", 15)
        sx, sy, swidth, sheight = bed.geometry(settings)
        check((swidth, sheight) == (760, 560), f"settings window is 760 x 560 (got {swidth} x {sheight})")
        stowly.press("Hide")
        conf = os.path.join(bed.env["XDG_CONFIG_HOME"], "Stowly", "Stowly.conf")
        bed.wait_for(lambda: os.path.exists(conf) and "closeWindows,forceQuit,minimize" in open(conf).read(),
                     "the stored enabled actions", 10)
        check(True, "switching Hide off stores closeWindows,forceQuit,minimize")
        bed.screenshot(os.path.join(shots, "settings.png"))

        stowly.open_panel()
        bed.wait_for(lambda: stowly.find("Force Quit All Apps", "push button") is not None, "panel tiles", 10)
        check(stowly.find("Hide All Apps", "push button") is None, "the panel no longer offers Hide All Apps")
        check(stowly.find("Minimize All Windows", "push button") is not None, "the panel still offers Minimize")
        bed.screenshot(os.path.join(shots, "panel-after-settings.png"))

        panel = stowly.panel_window()
        bed.run(["xdotool", "windowactivate", "--sync", str(panel)])
        bed.run(["xdotool", "key", "--window", str(panel), "--clearmodifiers", "ctrl+q"])
        code = stowly.wait_exit(10)
        check(code == 0, f"Ctrl+Q ends the program (exit status {code})")
    finally:
        bed.stop()
    return 1 if failures else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        print(__doc__)
        sys.exit(2)
    sys.exit(main(os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])))
