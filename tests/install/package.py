#!/usr/bin/python3

# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

"""The Debian package as a user gets it.

  package.py build BUILD_DIR      runs CPack once and unpacks the .deb into BUILD_DIR/package/root
  package.py validate BUILD_DIR   checks the unpacked tree and the package with the distribution's tools
"""

import glob
import os
import re
import shutil
import subprocess
import sys

from processes import check, failures

# Warnings lintian may give on this package, each with the reason it stays.
ACCEPTED_LINTIAN_TAGS = {
}


def run(argv, **kwargs):
    return subprocess.run(argv, capture_output=True, text=True, timeout=300, **kwargs)


def package_dir(build):
    return os.path.join(build, "package")


def the_deb(build):
    debs = glob.glob(os.path.join(package_dir(build), "stowly_*.deb"))
    if len(debs) != 1:
        raise SystemExit(f"expected one package in {package_dir(build)}, found {debs}")
    return debs[0]


def build(build_dir):
    out = package_dir(build_dir)
    shutil.rmtree(out, ignore_errors=True)
    os.makedirs(out)
    result = run(["cpack", "-G", "DEB", "--config", os.path.join(build_dir, "CPackConfig.cmake"), "-B", out],
                 cwd=build_dir)
    sys.stdout.write(result.stdout)
    sys.stderr.write(result.stderr)
    if result.returncode != 0:
        raise SystemExit("cpack failed")
    root = os.path.join(out, "root")
    unpacked = run(["dpkg-deb", "-x", the_deb(build_dir), root])
    if unpacked.returncode != 0:
        raise SystemExit("dpkg-deb -x failed: " + unpacked.stderr)
    print("unpacked", the_deb(build_dir), "into", root)


def validate(build_dir):
    deb = the_deb(build_dir)
    root = os.path.join(package_dir(build_dir), "root")
    app_id = "app.stowly.Stowly"

    files = sorted(os.path.relpath(os.path.join(d, f), root) for d, _, fs in os.walk(root) for f in fs)
    check(files and all(f.startswith("usr/") for f in files), "every file lies under /usr: " + ", ".join(
        f for f in files if not f.startswith("usr/")))
    for path in ["usr/bin/stowly", f"usr/share/applications/{app_id}.desktop",
                 f"usr/share/metainfo/{app_id}.metainfo.xml", f"usr/share/icons/hicolor/scalable/apps/{app_id}.svg",
                 f"usr/share/icons/hicolor/48x48/apps/{app_id}.png", f"usr/share/icons/hicolor/256x256/apps/{app_id}.png",
                 "usr/share/man/man1/stowly.1.gz", "usr/share/doc/stowly/copyright",
                 "usr/share/doc/stowly/changelog.Debian.gz"]:
        check(path in files, "installed: /" + path)
    check(os.access(os.path.join(root, "usr/bin/stowly"), os.X_OK), "the program is executable")

    desktop = os.path.join(root, f"usr/share/applications/{app_id}.desktop")
    result = run(["desktop-file-validate", desktop])
    check(result.returncode == 0 and not result.stdout.strip(), "desktop-file-validate is silent: " + result.stdout)
    with open(desktop) as f:
        entry = f.read()
    for line in ["Exec=stowly", f"Icon={app_id}", "X-KDE-Wayland-Interfaces=org_kde_plasma_window_management"]:
        check(("\n" + line + "\n") in entry, "desktop entry has " + line)
    check("\nCategories=" in entry and "\nKeywords=" in entry, "desktop entry has Categories and Keywords")

    result = run(["appstreamcli", "validate", "--no-net", "--pedantic",
                  os.path.join(root, f"usr/share/metainfo/{app_id}.metainfo.xml")])
    check(result.returncode == 0, "appstreamcli validate --no-net: " + result.stdout + result.stderr)

    result = run(["man", "--warnings", "-l", "-Tascii", os.path.join(root, "usr/share/man/man1/stowly.1.gz")],
                 env=dict(os.environ, MANWIDTH="80", LC_ALL="C"))
    text = re.sub(".\b", "", result.stdout)   # the pager's overstrike for bold
    check(result.returncode == 0 and "force-quit-all --yes" in text and not result.stderr.strip(),
          "the manual page renders without warnings: " + result.stderr)

    fields = run(["dpkg-deb", "-f", deb, "Depends", "Maintainer", "Section"]).stdout
    for needed in ["libqt6core6", "libqt6quick6", "libxcb1", "qml6-module-qtquick-controls",
                   "qml6-module-qtquick-layouts", "libc6", "fonts-inter"]:
        check(needed in fields, "depends on " + needed)
    check("Maintainer: The Stowly developers" in fields, "has a maintainer")

    result = run(["lintian", "--no-tag-display-limit", deb])
    tags = [line for line in result.stdout.splitlines() if line[:2] in ("E:", "W:")]
    errors = [line for line in tags if line.startswith("E:")]
    unexplained = [line for line in tags if line.startswith("W:")
                   and line.split(":", 2)[2].split()[0] not in ACCEPTED_LINTIAN_TAGS]
    print(result.stdout, end="")
    check(not errors, "lintian reports no errors")
    check(not unexplained, "every lintian warning is one we explain")

    version = run([os.path.join(root, "usr/bin/stowly"), "--version"], env={"PATH": "/usr/bin:/bin"})
    check(version.returncode == 0 and version.stdout.startswith("stowly "), "the unpacked program runs without a display")


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in ("build", "validate"):
        raise SystemExit(__doc__)
    if sys.argv[1] == "build":
        build(sys.argv[2])
        return 0
    validate(sys.argv[2])
    print(f"{len(failures)} failed" if failures else "all passed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
