// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: the program's entry and the UI layer (C++ with Qt) call these.

#include "platform/AppIcon.h"

namespace stowly::macos {

// NSApp setActivationPolicy: accessory: no Dock icon, no menu bar of its own, never
// frontmost by itself. Call once the toolkit has created the shared application
// (after QApplication is constructed); stops the program if there is none.
void useAccessoryActivationPolicy();

// NSApp activateIgnoringOtherApps: YES. An accessory app must bring itself forward
// before its settings window can take focus from the app in front.
void activateForSettingsWindow();

// The menu-bar image: this bundle's Finder icon drawn 16 x 16 points at (1, 1) inside
// an 18 x 18 point image, in its own colours (not a template image), rendered at
// `scale` pixels per point (1 or 2), so 18 x 18 or 36 x 36 pixels.
AppIcon makeStatusBarImage(int scale);

} // namespace stowly::macos
