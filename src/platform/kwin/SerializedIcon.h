// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/AppIcon.h"

#include <QByteArray>

namespace stowly::kwin {

// The image of a window icon as KWin hands it out through org_kde_plasma_window.get_icon: a
// QIcon written with QDataStream (Qt 5.15 format). An icon made of images (an X11 window's
// _NET_WM_ICON, say) is a list of PNG images with their sizes; this picks the normal, "off"
// image nearest `wantedSize`, preferring the larger on a tie, and scales larger ones down to a
// sane bound. An icon known only by its theme name, a null icon, or bytes that are not a whole
// icon give null (a window's themed name reaches us as its own event).
AppIconRef decodeSerializedIcon(const QByteArray& bytes, int wantedSize);

} // namespace stowly::kwin
