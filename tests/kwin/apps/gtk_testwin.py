#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""A GTK 3 window for the Wayland test beds: one window titled by the first argument, under
the application id org.stowly.GtkTestWindow (the app id the compositor reports). Closing the
window ends the program, and it says so on stderr, so a test can tell a close request from a
signal."""

import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gio, GLib, Gtk  # noqa: E402


def main() -> int:
    title = sys.argv[1] if len(sys.argv) > 1 else "GTK test window"
    # GTK 3 on Wayland reports the program name as the app id.
    GLib.set_prgname("org.stowly.GtkTestWindow")
    # NON_UNIQUE: several windows of a test run are several processes, one each.
    app = Gtk.Application(application_id="org.stowly.GtkTestWindow", flags=Gio.ApplicationFlags.NON_UNIQUE)

    def on_delete(_window, _event):
        print(f"gtk window {title}: closed on request", file=sys.stderr, flush=True)
        return False  # let it close; the application then quits

    def on_activate(application):
        window = Gtk.ApplicationWindow(application=application, title=title)
        window.set_default_size(320, 200)
        window.connect("delete-event", on_delete)
        window.show_all()

    app.connect("activate", on_activate)
    return app.run([sys.argv[0]])


if __name__ == "__main__":
    sys.exit(main())
