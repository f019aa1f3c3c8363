#!/usr/bin/python3

# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""Runs the real Stowly in a private, headless KDE Plasma Wayland session (KWin on a virtual
output with Xwayland), with native Wayland and Xwayland apps open, clicks its tray item
through a stand-in StatusNotifierWatcher and saves a picture of the panel.

  kwin_demo.py BUILD_DIR OUT.png

BUILD_DIR holds bin/stowly, tests/kwin/stowly_wltestwin and tests/ui/stand_in_sni_watcher.
Everything it starts is ended before it returns."""

import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time


def wait_for(predicate, what, seconds=20):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        value = predicate()
        if value:
            return value
        time.sleep(0.1)
    raise RuntimeError(f"timed out waiting for {what}")


def read(path):
    try:
        with open(path) as f:
            return f.read()
    except OSError:
        return ""


def panel_window(display):
    tree = subprocess.run(["xwininfo", "-root", "-tree"], env={**os.environ, "DISPLAY": display},
                          capture_output=True, text=True).stdout
    for line in tree.splitlines():
        if '"Stowly": ("stowly"' in line and "340x" in line:
            return line.split()[0]
    return None


def main(build, out):
    root = tempfile.mkdtemp(prefix="stowly-kwin-demo-")
    runtime, data = os.path.join(root, "runtime"), os.path.join(root, "data")
    os.makedirs(runtime, mode=0o700)
    os.makedirs(os.path.join(data, "applications"))
    stowly = os.path.join(build, "bin", "stowly")
    # KWin offers its window management to the program its desktop entry names.
    with open(os.path.join(data, "applications", "stowly-demo.desktop"), "w") as f:
        f.write("[Desktop Entry]\nType=Application\nName=Stowly\nNoDisplay=true\n"
                f"Exec={stowly}\nX-KDE-Wayland-Interfaces=org_kde_plasma_window_management\n")
    with open(os.path.join(data, "applications", "stowly_wltestwin.desktop"), "w") as f:
        f.write("[Desktop Entry]\nType=Application\nName=Wayland Test Window\nExec=stowly_wltestwin\n")
    # The installed kwin_wayland carries file capabilities a sandbox may refuse: run a copy.
    kwin = os.path.join(root, "kwin_wayland")
    shutil.copy("/usr/bin/kwin_wayland", kwin)
    inside = os.path.join(root, "inside.sh")
    with open(inside, "w") as f:
        f.write(f'#!/bin/sh\necho "$DISPLAY" > "{root}/display"\nexec sleep 100000\n')
    os.chmod(inside, 0o755)

    env = {**os.environ, "XDG_RUNTIME_DIR": runtime, "XDG_DATA_HOME": data,
           "XDG_CONFIG_HOME": os.path.join(root, "config"), "XDG_CURRENT_DESKTOP": "KDE"}
    env.pop("DISPLAY", None)
    env.pop("WAYLAND_DISPLAY", None)
    children = []

    def start(argv, log, extra=None):
        p = subprocess.Popen(argv, env={**env, **(extra or {})}, stdout=open(log, "w"), stderr=subprocess.STDOUT,
                             start_new_session=True)
        children.append(p)
        return p

    try:
        bus = start(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"],
                    os.path.join(root, "bus"))
        # The daemon may warn on the same stream; the address is the line that names a socket.
        env["DBUS_SESSION_BUS_ADDRESS"] = wait_for(
            lambda: next((line for line in read(os.path.join(root, "bus")).splitlines() if line.startswith("unix:")),
                         None), "the bus")
        del bus
        start([kwin, "--virtual", "--no-lockscreen", "--xwayland", "--socket", "stowly-demo", "--width", "1280",
               "--height", "800", inside], os.path.join(root, "kwin.log"))
        display = wait_for(lambda: read(os.path.join(root, "display")).strip(), "KWin and Xwayland")
        env["WAYLAND_DISPLAY"] = "stowly-demo"
        env["DISPLAY"] = display
        apps = os.path.join(root, "apps.log")
        start([os.path.join(build, "tests", "kwin", "stowly_wltestwin"), "--title", "Notes"], apps,
              {"QT_QPA_PLATFORM": "wayland"})
        start([os.path.join(build, "tests", "kwin", "stowly_wltestwin"), "--title", "Drawing", "--dialog"], apps,
              {"QT_QPA_PLATFORM": "wayland"})
        start(["xterm", "-geometry", "64x16+300+300", "-title", "Terminal"], apps)
        time.sleep(1.5)
        # The tray host: it records Stowly's item and clicks it at the top right of the screen.
        start([os.path.join(build, "tests", "ui", "stand_in_sni_watcher"), "1100", "4"],
              os.path.join(root, "watcher.log"))
        wait_for(lambda: "watching" in read(os.path.join(root, "watcher.log")), "the tray host")
        start([stowly], os.path.join(root, "stowly.log"))
        window = wait_for(lambda: panel_window(display), "Stowly's panel")
        time.sleep(1.5)
        subprocess.run(["import", "-window", window, out], env=env, check=True)
        print(read(os.path.join(root, "stowly.log")).strip())
        print(f"Stowly ran in a private headless KWin session; its panel is in {out}")
    finally:
        for p in reversed(children):
            try:
                os.killpg(p.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            p.wait()
        if not os.environ.get("STOWLY_KEEP_DEMO"):
            shutil.rmtree(root, ignore_errors=True)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        print(__doc__)
        sys.exit(2)
    main(os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2]))
