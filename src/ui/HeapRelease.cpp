// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "HeapRelease.h"

#include <cstdlib> // defines __GLIBC__ on glibc systems

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace stowly {

void returnFreedHeapToSystem()
{
#if defined(__GLIBC__)
    // glibc keeps freed memory of its arenas for reuse; only a trim gives it back.
    malloc_trim(0);
#endif
}

void keepHeapCompact()
{
#if defined(__GLIBC__)
    // Each thread that allocates would otherwise get an arena of its own (Qt's X event
    // reader, the QML type loader, D-Bus), and a block freed by another thread goes back
    // to the arena it came from: pages that stay resident after the view has gone.
    mallopt(M_ARENA_MAX, 1);
    // A fixed threshold: glibc would otherwise raise it after the first large free, up to
    // 32 MiB, and keep every later block of that size on the heap.
    mallopt(M_MMAP_THRESHOLD, 64 * 1024);
    mallopt(M_TRIM_THRESHOLD, 128 * 1024);
#endif
}

} // namespace stowly
