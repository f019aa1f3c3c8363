#!/usr/bin/python3
"""The panel used from the keyboard alone, on the real program: the default tile has the
focus when the panel opens; Tab and Shift+Tab move it; Enter runs the focused tile and its
result line appears; Tab walks into the rows' menu buttons, scrolling a row that lies
below the list's fold into view; Enter opens a row menu, Escape closes the menu and then
the panel; the menu's "Open" chosen with Enter activates that app. The focus and texts are
read through assistive technology (AT-SPI), the effects from the X server (xprop).

Usage: test_keyboard.py STOWLY_BINARY SCREENSHOT_DIR"""

import os
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from testbed import TestBed          # noqa: E402
from stowlydriver import Stowly      # noqa: E402

failures = []
TERMINALS = [f"KeyTerm{n}" for n in range(1, 10)]   # more rows than the list shows at once


def check(condition, what):
    print(("ok   " if condition else "FAIL ") + what, flush=True)
    if not condition:
        failures.append(what)
    return condition


def focused(stowly):
    """The accessible that holds the keyboard focus in Stowly, or None."""
    app = stowly.application()
    if app is None:
        return None
    pyatspi = stowly.atspi()
    stack = [app]
    while stack:
        node = stack.pop()
        try:
            if node.getState().contains(pyatspi.STATE_FOCUSED):
                return node
            stack.extend(node.getChildAtIndex(i) for i in range(node.childCount))
        except Exception:
            continue
    return None


def focused_name(stowly):
    node = focused(stowly)
    return node.name if node is not None else None


def key(bed, *names):
    for name in names:
        bed.run(["xdotool", "key", "--clearmodifiers", name])
        time.sleep(0.15)


def extents(node, stowly):
    box = node.queryComponent().getExtents(stowly.atspi().DESKTOP_COORDS)
    return box.x, box.y, box.width, box.height


def tab_to(bed, stowly, name, limit=40):
    for _ in range(limit):
        if focused_name(stowly) == name:
            return True
        key(bed, "Tab")
    return focused_name(stowly) == name


def active_window(bed):
    out = bed.xprop("-root", "_NET_ACTIVE_WINDOW")
    if "# " not in out:
        return 0
    return int(out.split("# ", 1)[1].split(",")[0].strip(), 16)


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

        # Tab into the last row's menu button, below the list's fold when the panel opened.
        last = TERMINALS[-1]
        reached = tab_to(bed, stowly, f"Actions for {last}")
        check(reached, f"Tab reaches the menu button of {last}'s row")
        if reached:
            button = focused(stowly)
            lists = [n for n in [stowly.find("Open Apps (%d)" % len(TERMINALS), "list")] if n is not None]
            if check(bool(lists), "the open-apps list is in the tree"):
                bx, by, bw, bh = extents(button, stowly)
                lx, ly, lw, lh = extents(lists[0], stowly)
                check(ly <= by and by + bh <= ly + lh,
                      f"the focused row is scrolled into the list's view (button {by}..{by + bh}, list {ly}..{ly + lh})")
            bed.screenshot(os.path.join(shots, "keyboard-last-row.png"))

            key(bed, "Return")
            bed.wait_for(lambda: stowly.find("Open", "menu item") is not None, "the row menu", 10)
            check(True, "Enter opens the row menu")
            key(bed, "Escape")
            bed.wait_for(lambda: stowly.find("Open", "menu item") is None, "the row menu to close", 10)
            check(stowly.panel_window() is not None, "Escape closed the menu and left the panel open")
            key(bed, "Escape")
            bed.wait_for(lambda: stowly.panel_window() is None, "the panel to close", 10)
            check(True, "a second Escape closed the panel")

        # Open from the row menu, by keyboard only.
        stowly.open_panel()
        bed.wait_for(lambda: focused_name(stowly) is not None, "a focused control in the panel", 15)
        target = TERMINALS[1]
        if check(tab_to(bed, stowly, f"Actions for {target}"), f"Tab reaches the menu button of {target}'s row"):
            key(bed, "space")
            bed.wait_for(lambda: stowly.find("Open", "menu item") is not None, "the row menu", 10)
            key(bed, "Down", "Up")   # the arrows walk the entries; Open is the first
            key(bed, "Return")
            bed.wait_for(lambda: active_window(bed) == windows[target], f"{target} to be active", 10)
            check(not bed.is_iconic(windows[target]), f"Open from the menu brought {target} back and activated it")
    finally:
        bed.stop()
    return 1 if failures else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        print(__doc__)
        sys.exit(2)
    sys.exit(main(os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])))
