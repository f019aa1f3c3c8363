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

} // namespace stowly
