# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""A private X11 desktop for driving the real program: Xvfb, a D-Bus session with the
AT-SPI bus, openbox, a tint2 panel with a system tray at the top of the screen, and
real apps. Every process is a child with a known pid and is ended on stop()."""

import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

TINT2RC = """
panel_items = TS
panel_size = 100% 30
panel_position = top center horizontal
panel_background_id = 1
panel_padding = 6 2 6
rounded = 0
border_width = 0
background_color = #2b2f36 100
border_color = #000000 0
taskbar_mode = single_desktop
taskbar_padding = 2 2 4
task_text = 1
task_icon = 1
task_font_color = #ffffff 90
task_maximum_size = 160 26
systray_padding = 4 2 6
systray_icon_size = 22
systray_sort = ascending
"""


def displays_in_use():
    """Display numbers some X server already listens on. Lock files alone do not tell:
    a server in another sandbox may share our abstract socket namespace without sharing
    /tmp, and clients try the abstract socket first."""
    used = set()
    marker = "/tmp/.X11-unix/X"
    try:
        with open("/proc/net/unix") as sockets:
            for line in sockets:
                at = line.find(marker)
                if at >= 0:
                    digits = line[at + len(marker):].strip()
                    if digits.isdigit():
                        used.add(int(digits))
    except OSError:
        pass
    for name in os.listdir("/tmp"):
        if name.startswith(".X") and name.endswith("-lock") and name[2:-5].isdigit():
            used.add(int(name[2:-5]))
    return used


def free_display_candidates(count=20):
    used = displays_in_use()
    candidate = 100 + os.getpid() % 700
    found = []
    while len(found) < count:
        if candidate not in used:
            found.append(candidate)
        candidate += 1
    return found


class TestBed:
    def __init__(self, width=1280, height=800):
        self.size = (width, height)
        self.processes = []     # (name, Popen), started in order
        self.apps = []
        self.home = tempfile.mkdtemp(prefix="stowly-testbed-")
        self.env = dict(os.environ)
        self.display = None

    # ---- life cycle ---------------------------------------------------------------
    def start(self, tray=True, accessibility=True):
        try:
            self._start_x()
            self._start_dbus(accessibility)
            self._wait_for(lambda: self.run(["xdpyinfo"]).returncode == 0, "the X server", 30)
            self._start_window_manager()
            if tray:
                rc = os.path.join(self.home, "tint2rc")
                with open(rc, "w") as f:
                    f.write(TINT2RC)
                self._spawn("tint2", ["tint2", "-c", rc])
                self._wait_for(self._tray_up, "tint2", 30)
                # The panel maps a moment before its tray owns the tray selection.
                time.sleep(1.0)
        except BaseException:
            for name in ("openbox", "tint2"):
                path = os.path.join(self.home, name + ".log")
                if os.path.exists(path):
                    with open(path, errors="replace") as log:
                        sys.stderr.write(f"--- {name} ---\n" + log.read()[-2000:])
            self.stop()
            raise
        return self

    def _start_window_manager(self):
        # On a busy machine a client can now and then fail to connect to a brand-new
        # server; a window manager that exited at once is started again.
        for attempt in range(3):
            openbox = self._spawn("openbox", ["openbox", "--sm-disable"])
            deadline = time.monotonic() + 30
            while time.monotonic() < deadline and openbox.poll() is None:
                if self._root_has("_NET_SUPPORTING_WM_CHECK"):
                    return
                time.sleep(0.1)
            self.end(openbox)
        raise TimeoutError("timed out waiting for openbox")

    def stop(self):
        for name, process in reversed(self.processes):
            try:
                self._end(process)
            except Exception:   # keep ending the others
                pass
        self.processes.clear()
        shutil.rmtree(self.home, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.stop()

    # ---- programs -----------------------------------------------------------------
    def spawn_app(self, argv):
        process = self._spawn(argv[0], argv)
        self.apps.append(process)
        return process

    def spawn(self, name, argv, env=None):
        return self._spawn(name, argv, env)

    def end(self, process):
        self._end(process)
        self.processes = [(n, p) for n, p in self.processes if p is not process]

    def run(self, argv, **kwargs):
        return subprocess.run(argv, env=self.env, capture_output=True, text=True, timeout=30, **kwargs)

    def screenshot(self, path, window="root"):
        result = self.run(["import", "-window", window, path])
        if result.returncode != 0:
            raise RuntimeError("import failed: " + result.stderr)
        return path

    # ---- X queries ------------------------------------------------------------------
    def xprop(self, *args):
        return self.run(["xprop", *args]).stdout

    def windows_of_pid(self, pid, name=None):
        argv = ["xdotool", "search", "--pid", str(pid)]
        if name:
            argv += ["--name", name]
        return [int(w) for w in self.run(argv).stdout.split()]

    def client_windows(self):
        out = self.xprop("-root", "_NET_CLIENT_LIST")
        if "#" not in out:
            return []
        return [int(w.strip(), 16) for w in out.split("#", 1)[1].split(",") if w.strip()]

    def is_iconic(self, window):
        return "Iconic" in self.xprop("-id", str(window), "WM_STATE")

    def geometry(self, window):
        out = self.run(["xdotool", "getwindowgeometry", "--shell", str(window)]).stdout
        values = dict(line.split("=", 1) for line in out.split() if "=" in line)
        return int(values["X"]), int(values["Y"]), int(values["WIDTH"]), int(values["HEIGHT"])

    def wait_for(self, predicate, what, timeout=10.0):
        return self._wait_for(predicate, what, timeout)

    def wait_for_value(self, produce, what, timeout=10.0):
        """Waits until produce() gives something other than None, and returns it."""
        deadline = time.monotonic() + timeout
        while time.monotonic() < deadline:
            value = produce()
            if value is not None:
                return value
            time.sleep(0.1)
        raise TimeoutError("timed out waiting for " + what)

    # ---- internals ------------------------------------------------------------------
    def _start_x(self):
        # An explicit free number, and -displayfd as the readiness signal: Xvfb writes
        # the number once it accepts connections and closes the pipe if it cannot.
        for candidate in free_display_candidates():
            number = self._try_xvfb(candidate)
            if number:
                break
        else:
            raise RuntimeError("Xvfb did not start")
        self.display = ":" + number.decode().strip()
        self.env["DISPLAY"] = self.display
        self.env["XDG_CONFIG_HOME"] = os.path.join(self.home, "config")
        self.env["XDG_RUNTIME_DIR"] = os.path.join(self.home, "runtime")
        os.makedirs(self.env["XDG_RUNTIME_DIR"], mode=0o700)
        # The shell a terminal starts: one that reads none of the machine's start-up files
        # (an interactive bash would run whatever ~/.bashrc holds, beside every test).
        self.env["SHELL"] = "/bin/sh"
        self.env.pop("WAYLAND_DISPLAY", None)

    def _try_xvfb(self, candidate):
        read_end, write_end = os.pipe()
        width, height = self.size
        xvfb = subprocess.Popen(
            ["Xvfb", f":{candidate}", "-displayfd", str(write_end), "-nolisten", "tcp",
             "-screen", "0", f"{width}x{height}x24"],
            pass_fds=[write_end], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            start_new_session=True)
        os.close(write_end)
        number = b""
        deadline = time.monotonic() + 20
        while not number.endswith(b"\n") and time.monotonic() < deadline:
            chunk = os.read(read_end, 16)
            if not chunk:
                break
            number += chunk
        os.close(read_end)
        if not number.endswith(b"\n"):
            xvfb.kill()
            xvfb.wait()
            return None
        self.processes.append(("Xvfb", xvfb))
        return number

    def _start_dbus(self, accessibility):
        read_end, write_end = os.pipe()
        daemon = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", f"--print-address={write_end}"],
            pass_fds=[write_end], env=self.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            start_new_session=True)
        os.close(write_end)
        self.processes.append(("dbus-daemon", daemon))
        address = b""
        while not address.endswith(b"\n"):
            chunk = os.read(read_end, 256)
            if not chunk:
                break
            address += chunk
        os.close(read_end)
        if not address.strip():
            raise RuntimeError("dbus-daemon did not start")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = address.decode().strip()
        if accessibility:
            self.env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
            self.env["NO_AT_BRIDGE"] = "0"
            self._spawn("at-spi-bus-launcher", ["/usr/libexec/at-spi-bus-launcher", "--launch-immediately"])

    def _spawn(self, name, argv, env=None):
        # Each program's output goes to a log in the bed's folder, for diagnosis.
        with open(os.path.join(self.home, name.replace("/", "_") + ".log"), "ab") as log:
            process = subprocess.Popen(argv, env=env or self.env, stdout=log, stderr=log,
                                       start_new_session=True)
        self.processes.append((name, process))
        return process

    @staticmethod
    def _end(process):
        if process.poll() is not None:
            return
        try:
            # Each child leads its own process group, so helpers it started go too.
            os.killpg(process.pid, signal.SIGTERM)
        except ProcessLookupError:
            pass
        try:
            process.wait(timeout=5)
        except subprocess.TimeoutExpired:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait(timeout=5)

    def _root_has(self, prop):
        return "window id" in self.xprop("-root", prop)

    def _tray_up(self):
        # tint2 maps its panel once its system tray has taken the tray selection.
        return bool(self.run(["xdotool", "search", "--classname", "tint2"]).stdout.strip())

    def _wait_for(self, predicate, what, timeout=10.0):
        deadline = time.monotonic() + timeout
        while time.monotonic() < deadline:
            if predicate():
                return True
            time.sleep(0.1)
        raise TimeoutError("timed out waiting for " + what)
