// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

namespace stowly::linuxdesktop {

// How many descriptors the /proc readers may keep open between passes, shared by all of
// them: enough to spare an open and a close per process and refresh, while most of the
// descriptor limit stays with the rest of the program, and every kept one stays clear
// of FD_SETSIZE for any library that still uses select().
class OpenFileBudget {
public:
    OpenFileBudget();
    explicit OpenFileBudget(std::size_t total) : m_left(total) {}

    // Takes count descriptors from the budget; false (and nothing taken) when too few are left.
    bool take(std::size_t count = 1);
    void giveBack(std::size_t count = 1) { m_left += count; }
    std::size_t left() const { return m_left; }

private:
    std::size_t m_left = 0;
};

} // namespace stowly::linuxdesktop
