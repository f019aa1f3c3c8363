# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""What the install tests share: checks that report and count, a look at processes from
outside, through /proc, and the frame every test script runs in."""

import os
import sys

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


def run_script(usage, start_bed, scenario):
    """Runs scenario(bed, binary) for the binary named on the command line, on a bed made by
    start_bed() and stopped afterwards whatever happens; exits 1 when any check failed."""
    if len(sys.argv) != 2:
        raise SystemExit(usage)
    binary = os.path.realpath(sys.argv[1])
    bed = start_bed()
    try:
        scenario(bed, binary)
    finally:
        bed.stop()
    print(f"{len(failures)} failed" if failures else "all passed")
    sys.exit(1 if failures else 0)
