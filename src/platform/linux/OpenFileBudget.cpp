// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "OpenFileBudget.h"

#include <sys/resource.h>
#include <sys/select.h>

#include <algorithm>

namespace stowly::linuxdesktop {

namespace {

constexpr std::size_t kLeftToTheProgram = 256;

std::size_t keepableFiles()
{
    rlimit limit{};
    rlim_t usable = FD_SETSIZE;
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
        usable = std::min<rlim_t>(limit.rlim_cur, FD_SETSIZE);
    return usable > kLeftToTheProgram ? static_cast<std::size_t>(usable - kLeftToTheProgram) : 0;
}

} // namespace

OpenFileBudget::OpenFileBudget() : m_left(keepableFiles()) {}

bool OpenFileBudget::take(std::size_t count)
{
    if (count > m_left)
        return false;
    m_left -= count;
    return true;
}

} // namespace stowly::linuxdesktop
