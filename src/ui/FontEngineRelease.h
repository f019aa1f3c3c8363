// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

namespace stowly {

// Drops the font engines Qt keeps for text it has laid out or drawn on this thread: their
// FreeType faces, the font tables HarfBuzz copied for shaping, and their glyph caches.
// Qt evicts engines only once they cost more than its cache's floor, so without this the
// panel's fonts stay in memory all day after it has closed. Call it only while no view
// shows text; the next view opens them again.
void releaseFontEngines();

} // namespace stowly
