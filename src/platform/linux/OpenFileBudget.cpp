// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "OpenFileBudget.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <unistd.h>

#include <algorithm>

namespace stowly::linuxdesktop {

namespace {

// Left to the rest of the program below FD_SETSIZE, and above it.
constexpr std::uint64_t kLeftToTheProgram = 256;
constexpr std::uint64_t kSelectable = FD_SETSIZE;
// A limit of "infinity" still has a kernel maximum behind it (fs.nr_open); this is plenty.
constexpr std::uint64_t kMostPlannedFor = 1u << 20;

std::uint64_t softLimitNow()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return kSelectable;
    return limit.rlim_cur == RLIM_INFINITY ? kMostPlannedFor : limit.rlim_cur;
}

std::uint64_t spare(std::uint64_t room)
{
    return room > kLeftToTheProgram ? room - kLeftToTheProgram : 0;
}

} // namespace

OpenFileBudget::OpenFileBudget() : OpenFileBudget(forSoftLimit(softLimitNow())) {}

OpenFileBudget OpenFileBudget::forSoftLimit(std::uint64_t softLimit)
{
    softLimit = std::min(softLimit, kMostPlannedFor);
    const std::uint64_t low = spare(std::min(softLimit, kSelectable));
    const std::uint64_t high = softLimit > kSelectable ? spare(softLimit - kSelectable) : 0;
    return OpenFileBudget(static_cast<std::size_t>(low + high), static_cast<std::size_t>(low));
}

int OpenFileBudget::keep(int fd)
{
    if (fd < 0)
        return -1;
    if (m_left == 0) {
        ::close(fd);
        return -1;
    }
    if (fd < static_cast<int>(kSelectable)) {
        const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, static_cast<int>(kSelectable));
        if (moved >= 0) {
            ::close(fd);
            fd = moved;
        } else if (m_lowLeft > 0) {
            --m_lowLeft;
        } else {
            ::close(fd);
            return -1;
        }
    }
    --m_left;
    return fd;
}

void OpenFileBudget::release(int fd)
{
    if (fd < 0)
        return;
    if (fd < static_cast<int>(kSelectable))
        ++m_lowLeft;
    ++m_left;
    ::close(fd);
}

} // namespace stowly::linuxdesktop
