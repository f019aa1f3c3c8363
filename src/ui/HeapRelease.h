// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

namespace stowly {

// Hands the pages that freed heap blocks still occupy back to the system, so that what a
// closed view gave up shows as less resident memory, not only as free room in the heap.
void returnFreedHeapToSystem();

// Set before anything allocates much: one heap for every thread, and large blocks (decoded
// images, glyph caches, compiled QML) in their own mappings, which go back to the system
// as soon as they are freed instead of leaving holes in the heap that a trim cannot reach.
void keepHeapCompact();

} // namespace stowly
