#!/usr/bin/python3

# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""One Stowly per session, seen from outside. On a private session bus: the first start owns
app.stowly.Stowly, a second start opens the first one's panel and exits 0, the name goes with
a process killed by SIGKILL so that the next start works, org.freedesktop.Application answers
callers other than Stowly, a start while the running one does not answer gives up, and two
starts at the same moment leave one process. Without a
session bus the local socket does the same, a crashed instance's socket file included.

Usage: test_single_instance.py STOWLY_BINARY"""

import os
import signal
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "ui", "e2e"))
from testbed import TestBed          # noqa: E402
from stowlydriver import Stowly      # noqa: E402
from processes import alive, check, instances_of, run_script   # noqa: E402

from gi.repository import Gio, GLib  # noqa: E402

BUS_NAME = "app.stowly.Stowly"
OBJECT_PATH = "/app/stowly/Stowly"
APPLICATION = "org.freedesktop.Application"


class Bus:
    """The bed's session bus, through GLib's own D-Bus client, not ours."""

    def __init__(self, address):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)

    def call(self, destination, path, interface, method, arguments, timeout_ms=5000):
        return self.connection.call_sync(destination, path, interface, method, arguments, None,
                                         Gio.DBusCallFlags.NO_AUTO_START, timeout_ms, None)

    def _bus(self, method, name):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
                         GLib.Variant("(s)", (name,))).unpack()[0]

    def has_owner(self, name):
        return self._bus("NameHasOwner", name)

    def owner_pid(self, name):
        try:
            return self._bus("GetConnectionUnixProcessID", name)
        except GLib.Error:
            return None

    def error_of(self, method, arguments):
        """The D-Bus error name a call to Stowly's application object answers, or None."""
        try:
            self.call(BUS_NAME, OBJECT_PATH, APPLICATION, method, arguments)
            return None
        except GLib.Error as error:
            return Gio.DBusError.get_remote_error(error) or error.message


def runtime_sockets(bed):
    folder = bed.env["XDG_RUNTIME_DIR"]
    return sorted(name for name in os.listdir(folder) if name.startswith("app.stowly.Stowly") and name.endswith(".socket"))


def start_tray(bed, binary, env):
    """A tray instance, as the driver starts one, in the environment given."""
    stowly = Stowly(bed, binary)
    stowly.process = bed.spawn("stowly", [binary], env=env)
    bed.wait_for(lambda: stowly.tray_icon() is not None, "Stowly's tray icon", 60)
    return stowly


def kill(bed, stowly):
    os.kill(stowly.pid, signal.SIGKILL)
    stowly.process.wait(timeout=10)
    bed.end(stowly.process)


def second_start_hands_over(bed, binary, env, first, what):
    closed = first.panel_window() is None
    second = subprocess.run([binary], env=env, capture_output=True, text=True, timeout=60)
    check(second.returncode == 0 and "already running" in second.stdout,
          f"{what}: a second start exits 0 ({second.returncode}: {second.stdout.strip()!r} {second.stderr.strip()!r})")
    panel = bed.wait_for_value(first.panel_window, "the first instance's panel", 15) if closed else None
    check(closed and panel is not None, f"{what}: the second start opened the first one's panel")
    check(instances_of(binary) == [first.pid], f"{what}: one process remains: {instances_of(binary)}")


def with_bus(bed, binary):
    bus = Bus(bed.env["DBUS_SESSION_BUS_ADDRESS"])
    env = dict(bed.env)

    first = start_tray(bed, binary, env)
    check(bus.owner_pid(BUS_NAME) == first.pid, f"the first start owns {BUS_NAME} (owner {bus.owner_pid(BUS_NAME)})")
    check(runtime_sockets(bed) == [], f"with a bus no socket is made: {runtime_sockets(bed)}")
    second_start_hands_over(bed, binary, env, first, "on the bus")

    check(bus.error_of("ActivateAction", GLib.Variant("(sava{sv})", ("frobnicate", [], {})))
          == "org.freedesktop.DBus.Error.InvalidArgs", "an unknown desktop action is refused")
    check(bus.error_of("Open", GLib.Variant("(asa{sv})", (["file:///etc/hostname"], {})))
          == "org.freedesktop.DBus.Error.NotSupported", "opening files is refused")
    check(bus.error_of("deleteLater", None) == "org.freedesktop.DBus.Error.UnknownMethod",
          "nothing but the interface's methods is reachable")
    check(alive(first.pid), "and the refusals leave Stowly running")

    kill(bed, first)
    bed.wait_for(lambda: not bus.has_owner(BUS_NAME), "the bus to drop the killed instance's name", 10)
    check(not bus.has_owner(BUS_NAME), "SIGKILL takes the name with the process")
    restarted = start_tray(bed, binary, env)
    check(bus.owner_pid(BUS_NAME) == restarted.pid, "a start after SIGKILL owns the name again")
    check(restarted.panel_window() is None, "and opens no panel by itself")
    check(bus.error_of("Activate", GLib.Variant("(a{sv})", ({},))) is None, "Activate from another client answers")
    check(bed.wait_for_value(restarted.panel_window, "the panel after Activate", 15) is not None,
          "org.freedesktop.Application.Activate opens the panel")

    # A Stowly that holds the name but cannot answer (stopped here) is not started around.
    os.kill(restarted.pid, signal.SIGSTOP)
    began = time.monotonic()
    stuck = subprocess.run([binary], env=env, capture_output=True, text=True, timeout=60)
    waited = time.monotonic() - began
    os.kill(restarted.pid, signal.SIGCONT)
    check(stuck.returncode == 1 and f"process {restarted.pid}" in stuck.stderr and "does not answer" in stuck.stderr,
          f"a start while the running one does not answer exits 1 naming it: {stuck.returncode} {stuck.stderr.strip()!r}")
    check(waited < 30, f"and gives up after a bounded wait ({waited:.1f} s)")
    check(instances_of(binary) == [restarted.pid], "still one process")
    kill(bed, restarted)
    bed.wait_for(lambda: not bus.has_owner(BUS_NAME), "the name to go again", 10)

    # Two starts at one moment: the bus gives the name to one; the other hands over to it.
    racers = [bed.spawn("stowly-race", [binary], env=env) for _ in range(2)]
    bed.wait_for(lambda: sum(r.poll() is not None for r in racers) >= 1, "one of two simultaneous starts to end", 60)
    time.sleep(1.0)
    ended = [r for r in racers if r.poll() is not None]
    running = [r for r in racers if r.poll() is None]
    check(len(ended) == 1 and ended[0].returncode == 0, f"of two simultaneous starts one exits 0: "
          f"{[r.returncode for r in racers]}")
    check(len(running) == 1 and instances_of(binary) == [running[0].pid] and bus.owner_pid(BUS_NAME) == running[0].pid,
          f"the other one stays and owns the name: {instances_of(binary)}")
    for racer in racers:
        bed.end(racer)


def without_bus(bed, binary):
    env = dict(bed.env)
    # An address nobody listens on: no session bus, and libdbus starts none by itself.
    env["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + os.path.join(bed.home, "no-bus-here")
    bus = Bus(bed.env["DBUS_SESSION_BUS_ADDRESS"])

    first = start_tray(bed, binary, env)
    check(len(runtime_sockets(bed)) == 1, f"without a bus the first start listens on a socket: {runtime_sockets(bed)}")
    check(not bus.has_owner(BUS_NAME), "and takes no name on a bus it was not given")
    second_start_hands_over(bed, binary, env, first, "without a bus")

    kill(bed, first)
    stale = runtime_sockets(bed)
    check(len(stale) == 1, f"the killed instance leaves its socket file behind: {stale}")
    restarted = start_tray(bed, binary, env)
    check(instances_of(binary) == [restarted.pid], "a start after SIGKILL replaces the stale socket")
    second_start_hands_over(bed, binary, env, restarted, "without a bus, after SIGKILL")
    kill(bed, restarted)


def scenario(bed, binary):
    with_bus(bed, binary)
    without_bus(bed, binary)


if __name__ == "__main__":
    run_script(__doc__, lambda: TestBed().start(accessibility=False), scenario)
