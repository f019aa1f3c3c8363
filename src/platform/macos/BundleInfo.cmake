# SPDX-FileCopyrightText: 2026 The Stowly developers
#
# SPDX-License-Identifier: MIT

# The app bundle's identity, shared by the bundle itself (CMakeLists.txt here, macOS
# only) and the Info.plist check that runs on every platform (tests/macos).
set(STOWLY_BUNDLE_NAME Stowly)
set(STOWLY_BUNDLE_IDENTIFIER dev.stowly.Stowly)
set(STOWLY_BUNDLE_ICON_FILE Stowly.icns)
