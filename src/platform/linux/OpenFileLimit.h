// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <sys/resource.h>

#include <cstdint>

// The soft limit on open descriptors (RLIMIT_NOFILE). Stowly keeps a few descriptors per
// process of the machine between refreshes, so it raises its own soft limit towards the
// hard one at start-up; the programs it starts get back the limit it was started with,
// since a program that uses select() or closes every descriptor up to its limit would
// break or slow down with a raised one.
namespace stowly::linuxdesktop::openfilelimit {

// Raises the soft limit to the hard one, at most to kMostKept; remembers the soft limit
// found the first time. Returns the soft limit now in force.
std::uint64_t raise();

// The soft limit the program was started with (the current one when raise() has not run).
std::uint64_t original();

// Upper bound of the raise: plenty for tens of thousands of processes.
constexpr std::uint64_t kMostKept = 65536;

// Puts the original soft limit back for as long as it lives, around a call that starts a
// program (Qt 6.4's QProcess::startDetached ignores a child-process modifier, and
// QDesktopServices takes none). Lowering the limit closes nothing: descriptors kept above
// it stay usable; only new ones must fit under it meanwhile.
class ForChildren {
public:
    ForChildren();
    ~ForChildren();
    ForChildren(const ForChildren&) = delete;
    ForChildren& operator=(const ForChildren&) = delete;

private:
    rlimit m_raised{};
    bool m_lowered = false;
};

} // namespace stowly::linuxdesktop::openfilelimit
