#!/usr/bin/python3

# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""The panel used from the keyboard alone, on the real program: the default tile has the
focus when the panel opens; Tab and Shift+Tab move it; Enter runs the focused tile and its
result line appears; Tab walks on into the rows' menu buttons; Enter opens a row menu,
Escape closes that menu and leaves the panel open; the menu opened again, Enter chooses
"Open" and that row's app becomes the active one; opened again, the panel starts on the
default tile, and Escape closes a menu first, then the panel; Force Quit All Apps run from
the keyboard leaves two tiles disabled, which AT-SPI reports so and Tab skips. The focus and
texts are read through assistive technology (AT-SPI), the effects from the X server (xprop).

Usage: test_keyboard.py STOWLY_BINARY SCREENSHOT_DIR"""

import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from testbed import TestBed          # noqa: E402
from stowlydriver import Stowly      # noqa: E402

failures = []
# As many terminals as the list shows whole, so every row's menu button is a stable stop
# for Tab (the scrolling of rows further down is checked in-process by tst_keyboard_focus).
TERMINALS = [f"KeyTerm{n}" for n in range(1, 5)]
MENU_PREFIX = "Actions for "


def check(condition, what):
    print(("ok   " if condition else "FAIL ") + what, flush=True)
    if not condition:
        failures.append(what)
    return condition


def focused(stowly):
    """The accessible that holds the keyboard focus in Stowly, or None: the deepest one
    reading focused, since a list containing the focused control reads focused too."""
    app = stowly.application()
    if app is None:
        return None
    pyatspi = stowly.atspi()
    found = None
    stack = [app]
    while stack:
        node = stack.pop()
        try:
            if node.getState().contains(pyatspi.STATE_FOCUSED):
                found = node
            stack.extend(node.getChildAtIndex(i) for i in reversed(range(node.childCount)))
        except Exception:
            continue
    return found


def focused_name(stowly):
    node = focused(stowly)
    return node.name if node is not None else None


def key(bed, *names):
    for name in names:
        bed.run(["xdotool", "key", "--clearmodifiers", name])
        time.sleep(0.15)


def active_window(bed):
    out = bed.xprop("-root", "_NET_ACTIVE_WINDOW")
    if "# " not in out:
        return 0
    return int(out.split("# ", 1)[1].split(",")[0].strip(), 16)


def tab_until(bed, stowly, wanted, limit=12):
    """Tab until the focused control's name satisfies `wanted`; its name, or None."""
    for _ in range(limit):
        key(bed, "Tab")
        name = bed.wait_for_value(lambda: focused_name(stowly), "a focused control", 10)
        if wanted(name):
            return name
    return None


def main(binary, shots):
    os.makedirs(shots, exist_ok=True)
    bed = TestBed().start()
    try:
        windows = {}
        for index, name in enumerate(TERMINALS):
            process = bed.spawn_app(["xterm", "-name", name.lower(), "-class", name,
                                     "-geometry", f"40x8+{100 + 40 * index}+{120 + 30 * index}"])
            windows[name] = bed.wait_for_value(
                lambda: next((w for w in bed.windows_of_pid(process.pid) if w in bed.client_windows()), None),
                f"{name}'s window", 30)

        stowly = Stowly(bed, binary).start()
        time.sleep(1.5)   # the tray reports the icon's place a moment after embedding it
        stowly.open_panel()
        bed.wait_for(lambda: focused_name(stowly) is not None, "a focused control in the panel", 15)
        check(focused_name(stowly) == "Minimize All Windows",
              f"the panel opens with the focus on the default tile ({focused_name(stowly)!r})")

        key(bed, "Tab")
        check(focused_name(stowly) == "Hide All Apps", f"Tab moves to the next tile ({focused_name(stowly)!r})")
        key(bed, "shift+Tab")
        check(focused_name(stowly) == "Minimize All Windows", "Shift+Tab moves back")
        key(bed, "Return")
        bed.wait_for(lambda: stowly.find(f"Minimized {len(TERMINALS)} windows.") is not None,
                     "the result of Minimize All Windows in the panel", 10)
        check(all(bed.is_iconic(w) for w in windows.values()), "Enter on the tile minimized every terminal")
        bed.screenshot(os.path.join(shots, "keyboard-tile.png"))

        # The rows' menu buttons follow the four tiles in the Tab order; the rows are in
        # memory order, so the focused button's name says whose row it is.
        menu_name = tab_until(bed, stowly, lambda name: name is not None and name.startswith(MENU_PREFIX))
        check(menu_name is not None, f"Tab reaches a row's menu button ({menu_name!r})")
        if menu_name is None:
            return 1
        target = menu_name[len(MENU_PREFIX):]
        check(target in windows, f"the focused menu button belongs to a terminal's row ({target!r})")
        key(bed, "Return")
        bed.wait_for(lambda: stowly.find("Open", "menu item") is not None, "the row menu", 10)
        check(True, "Enter on a row's menu button opens its menu")
        bed.screenshot(os.path.join(shots, "keyboard-row-menu.png"))
        key(bed, "Escape")
        bed.wait_for(lambda: stowly.find("Open", "menu item") is None, "the row menu to close", 10)
        check(stowly.panel_window() is not None, "Escape closed the menu and left the panel open")
        check(focused_name(stowly) == menu_name, "the focus went back to the menu button")

        # Open, chosen with the arrows and Enter, activates that row's terminal.
        key(bed, "Return")
        bed.wait_for(lambda: stowly.find("Open", "menu item") is not None, "the row menu, again", 10)
        key(bed, "Down", "Up", "Return")
        bed.wait_for(lambda: active_window(bed) == windows[target], f"{target} to become the active window", 10)
        check(not bed.is_iconic(windows[target]), f"Open brought {target} back from minimized")
        check(all(bed.is_iconic(w) for name, w in windows.items() if name != target),
              "the other terminals stay minimized")
        bed.wait_for(lambda: stowly.panel_window() is None, "the panel to close as it loses the focus", 10)

        # Opened again: the default tile has the focus; Escape closes a menu, then the panel.
        # (A tray click just after the panel lost the focus is taken for the click that
        # closed it, so wait a moment first.)
        time.sleep(1.0)
        stowly.open_panel()
        bed.wait_for(lambda: focused_name(stowly) == "Minimize All Windows",
                     "the focus on the default tile after reopening", 15)
        check(True, "the reopened panel starts on the default tile")
        menu_name = tab_until(bed, stowly, lambda name: name is not None and name.startswith(MENU_PREFIX))
        check(menu_name is not None, "Tab reaches a row's menu button again")
        key(bed, "Return")
        bed.wait_for(lambda: stowly.find("Open", "menu item") is not None, "the row menu", 10)
        key(bed, "Escape")
        bed.wait_for(lambda: stowly.find("Open", "menu item") is None, "the row menu to close", 10)
        check(stowly.panel_window() is not None, "the first Escape closed only the menu")
        key(bed, "Escape")
        bed.wait_for(lambda: stowly.panel_window() is None, "the panel to close", 10)
        check(True, "a second Escape closed the panel")

        # Force Quit All Apps from the keyboard empties the list: the two tiles that act on
        # the list are then reported disabled (neither enabled nor sensitive, not focusable)
        # and Tab passes them by.
        time.sleep(1.0)
        stowly.open_panel()
        bed.wait_for(lambda: focused_name(stowly) == "Minimize All Windows", "the focus on the default tile", 15)
        force_quit = tab_until(bed, stowly, lambda name: name == "Force Quit All Apps", limit=4)
        check(force_quit is not None, "Tab reaches Force Quit All Apps")
        key(bed, "Return")
        bed.wait_for(lambda: stowly.find(f"Force quit sent to {len(TERMINALS)} apps.") is not None,
                     "the result of Force Quit All Apps", 15)
        bed.wait_for(lambda: stowly.find("No regular apps are currently open.") is not None, "the empty list", 15)
        pyatspi = stowly.atspi()
        for name in ("Hide All Apps", "Force Quit All Apps"):
            tile = stowly.find(name, "push button")
            states = tile.getState() if tile is not None else None
            check(states is not None and not states.contains(pyatspi.STATE_ENABLED)
                  and not states.contains(pyatspi.STATE_SENSITIVE)
                  and not states.contains(pyatspi.STATE_FOCUSABLE),
                  f"AT-SPI reports {name} disabled: not enabled, not sensitive, not focusable")
        minimize = stowly.find("Minimize All Windows", "push button")
        check(minimize is not None and minimize.getState().contains(pyatspi.STATE_ENABLED),
              "and Minimize All Windows enabled")
        names = [tab_until(bed, stowly, lambda name: True, limit=1) for _ in range(8)]
        check(not {"Hide All Apps", "Force Quit All Apps"} & set(names),
              f"Tab never lands on a disabled tile ({names})")
        bed.screenshot(os.path.join(shots, "keyboard-disabled-tiles.png"))
    finally:
        bed.stop()
    return 1 if failures else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        print(__doc__)
        sys.exit(2)
    sys.exit(main(os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])))
