# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""What the install tests share: checks that report and count, and a look at processes from
outside, through /proc."""

import os

failures = []


def check(condition, what):
    print(("ok   " if condition else "FAIL ") + what, flush=True)
    if not condition:
        failures.append(what)
    return condition


def alive(pid):
    """True while the process exists and is not a zombie waiting to be reaped."""
    try:
        with open(f"/proc/{pid}/stat") as f:
            return f.read().split(")")[-1].split()[0] != "Z"
    except OSError:
        return False


def instances_of(binary):
    """Processes running this very file, whatever else runs on the machine."""
    found = []
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                if os.readlink(f"/proc/{entry}/exe") == binary and alive(int(entry)):
                    found.append(int(entry))
            except OSError:
                pass
    return sorted(found)
