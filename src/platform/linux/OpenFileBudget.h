// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>

namespace stowly::linuxdesktop {

// The descriptors the /proc readers may keep open between passes, shared by all of them:
// enough to spare an open and a close per process and refresh. A kept descriptor moves
// above FD_SETSIZE, so that the low numbers stay free for the rest of the program and for
// any library that still uses select(); the budget is what the soft limit leaves above
// FD_SETSIZE, less a reserve. Where a descriptor cannot move (the limit is no higher than
// FD_SETSIZE), it stays low, and then at most FD_SETSIZE less a reserve of them are kept.
class OpenFileBudget {
public:
    // From the soft limit now in force (see openfilelimit::raise()).
    OpenFileBudget();
    // For a given soft limit (of this process, or one to plan for).
    static OpenFileBudget forSoftLimit(std::uint64_t softLimit);
    // At most total kept descriptors, of which at most low may stay below FD_SETSIZE.
    explicit OpenFileBudget(std::size_t total) : OpenFileBudget(total, total) {}
    OpenFileBudget(std::size_t total, std::size_t low) : m_left(total), m_lowLeft(low) {}

    // Keeps fd, just opened by a reader: answers the descriptor to keep in its place (fd
    // moved above FD_SETSIZE when it can be), or -1 with fd closed when no room is left.
    // A negative fd answers -1.
    int keep(int fd);
    // Closes a descriptor keep() answered and gives its room back.
    void release(int fd);

    // Room for count more kept descriptors (at least, while none is moved low).
    bool hasRoom(std::size_t count = 1) const { return m_left >= count; }
    std::size_t left() const { return m_left; }

private:
    std::size_t m_left = 0;
    std::size_t m_lowLeft = 0;
};

} // namespace stowly::linuxdesktop
