// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

namespace stowly {

// Hands the pages that freed heap blocks still occupy back to the system, so that what a
// closed view gave up shows as less resident memory, not only as free room in the heap.
void returnFreedHeapToSystem();

} // namespace stowly
