// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

namespace stowly {

// Picks Qt Quick's software renderer for our two small windows unless the user named a
// scene graph backend or graphics API through Qt's own environment variables
// (QT_QUICK_BACKEND, QMLSCENE_DEVICE, QSG_RHI_BACKEND). On a Linux desktop it costs a
// fraction of the memory of the GPU path at the same paint time; the figures are in
// docs/benchmarks-at-rest.md. Must run before the first Qt Quick window exists.
void chooseSceneGraphBackend();

} // namespace stowly
