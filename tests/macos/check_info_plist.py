# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""Reads the filled-in Info.plist of the app bundle and checks what the bundle relies on:
a menu-bar-only app (LSUIElement), its identifier and icon, macOS 13, and no template
variable left unfilled."""

import plistlib
import re
import sys


def main() -> int:
    path, identifier, icon = sys.argv[1:4]
    with open(path, "rb") as handle:
        raw = handle.read()
    problems = []
    if re.search(rb"\$\{|@[A-Za-z_]+@", raw):
        problems.append("a template variable was left unfilled")
    info = plistlib.loads(raw, fmt=plistlib.FMT_XML)
    expected = {
        "LSUIElement": True,
        "CFBundleIdentifier": identifier,
        "CFBundleIconFile": icon,
        "CFBundlePackageType": "APPL",
        "LSMinimumSystemVersion": "13.0",
        "NSPrincipalClass": "NSApplication",
    }
    for key, value in expected.items():
        if info.get(key) != value:
            problems.append(f"{key} is {info.get(key)!r}, expected {value!r}")
    for key in ("CFBundleExecutable", "CFBundleName", "CFBundleVersion", "CFBundleShortVersionString"):
        if not isinstance(info.get(key), str) or not info[key]:
            problems.append(f"{key} is missing or empty")
    for problem in problems:
        print(problem)
    if not problems:
        print(f"{path}: {len(info)} keys, all as expected")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
