// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QIcon>
#include <QImage>

namespace stowly::StatusIcon {

// The tray image: the Stowly icon drawn 16 × 16 inside an 18 × 18 square (a one-point
// transparent margin), in its own colours, at `scale` device pixels per point.
QImage render(int scale);
// Both the 1× and the 2× image, for the tray to choose from.
QIcon icon();

} // namespace stowly::StatusIcon
