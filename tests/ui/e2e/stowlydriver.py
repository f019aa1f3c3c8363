# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""Starting the real program on a TestBed and working it from outside: through its tray
icon (xdotool, found by pid), AT-SPI (pyatspi) and the X server's own view (xprop)."""

import os
import subprocess
import time


class Stowly:
    def __init__(self, bed, binary):
        self.bed = bed
        self.binary = binary
        self.process = None
        self._atspi = None

    def start(self):
        self.process = self.bed.spawn("stowly", [self.binary])
        self.bed.wait_for(lambda: self.tray_icon() is not None, "Stowly's tray icon", 30)
        return self

    @property
    def pid(self):
        return self.process.pid

    # ---- windows ---------------------------------------------------------------------
    def _windows(self):
        return self.bed.windows_of_pid(self.pid)

    def tray_icon(self):
        """The icon embedded in the tray: a small window at the top of the screen."""
        found = self._tray_icon_and_geometry()
        return found[0] if found else None

    def _tray_icon_and_geometry(self):
        for window in self._windows():
            try:
                x, y, width, height = self.bed.geometry(window)
            except (KeyError, ValueError):
                continue   # gone between the listing and the question
            if width <= 48 and height <= 48 and y < 40 and width > 1:
                return window, (x, y, width, height)
        return None

    def panel_window(self):
        """The panel when it is on screen: a mapped 340-wide window."""
        argv = ["xdotool", "search", "--onlyvisible", "--pid", str(self.pid)]
        for window in (int(w) for w in self.bed.run(argv).stdout.split()):
            try:
                x, y, width, height = self.bed.geometry(window)
            except (KeyError, ValueError):
                continue
            if width == 340 and height > 100:
                return window
        return None

    def settings_window(self):
        """The settings window when it is on screen, found by its title."""
        argv = ["xdotool", "search", "--onlyvisible", "--pid", str(self.pid)]
        for window in (int(w) for w in self.bed.run(argv).stdout.split()):
            if "Stowly Settings" in self.bed.xprop("-id", str(window), "_NET_WM_NAME"):
                return window
        return None

    def click_tray_icon(self):
        # One look gives the icon and where it is: a window of ours can vanish between two
        # looks (a closing menu or panel), and the icon is asked for only once.
        icon, (x, y, width, height) = self.bed.wait_for_value(self._tray_icon_and_geometry, "Stowly's tray icon", 15)
        self.bed.run(["xdotool", "mousemove", "--sync", str(x + width // 2), str(y + height // 2)])
        self.bed.run(["xdotool", "click", "1"])
        return (x, y, width, height)

    def open_panel(self):
        if self.panel_window() is None:
            self.click_tray_icon()
        self.bed.wait_for(lambda: self.panel_window() is not None, "the panel", 15)
        return self.panel_window()

    # ---- assistive technology ---------------------------------------------------------
    def atspi(self):
        if self._atspi is None:
            os.environ["DBUS_SESSION_BUS_ADDRESS"] = self.bed.env["DBUS_SESSION_BUS_ADDRESS"]
            os.environ["DISPLAY"] = self.bed.env["DISPLAY"]
            import pyatspi  # connects to the bus named in the environment on import
            self._atspi = pyatspi
        return self._atspi

    def application(self):
        pyatspi = self.atspi()
        desktop = pyatspi.Registry.getDesktop(0)
        for index in range(desktop.childCount):
            app = desktop.getChildAtIndex(index)
            try:
                if app is not None and app.get_process_id() == self.pid:
                    return app
            except Exception:
                continue
        return None

    def find(self, name, role=None, showing=True):
        """The first accessible named `name` (and of `role`, e.g. "push button")."""
        app = self.application()
        if app is None:
            return None
        pyatspi = self.atspi()
        stack = [app]
        while stack:
            node = stack.pop()
            try:
                if node.name == name and (role is None or node.getRoleName() == role):
                    if not showing or node.getState().contains(pyatspi.STATE_SHOWING):
                        return node
                stack.extend(node.getChildAtIndex(i) for i in reversed(range(node.childCount)))
            except Exception:
                continue
        return None

    def names(self, role=None):
        app = self.application()
        found = []
        stack = [app] if app else []
        pyatspi = self.atspi()
        while stack:
            node = stack.pop()
            try:
                if role is None or node.getRoleName() == role:
                    if node.getState().contains(pyatspi.STATE_SHOWING):
                        found.append(node.name)
                stack.extend(node.getChildAtIndex(i) for i in range(node.childCount))
            except Exception:
                continue
        return found

    def press(self, name, role=None):
        node = self.bed.wait_for_value(lambda: self.find(name, role), f"'{name}' in the accessibility tree", 15)
        action = node.queryAction()
        for index in range(action.nActions):
            if action.getName(index) == "Press":
                action.doAction(index)
                return node
        raise RuntimeError(f"'{name}' has no Press action")

    # ---- end ----------------------------------------------------------------------------
    def wait_exit(self, timeout=10):
        try:
            return self.process.wait(timeout=timeout)
        except subprocess.TimeoutExpired:
            return None
