// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "OpenFileLimit.h"

#include <algorithm>

namespace stowly::linuxdesktop::openfilelimit {

namespace {

// Set once, by the first raise(), on the thread that starts the session.
bool g_remembered = false;
rlimit g_original{};

bool remember()
{
    if (!g_remembered && ::getrlimit(RLIMIT_NOFILE, &g_original) == 0)
        g_remembered = true;
    return g_remembered;
}

std::uint64_t softOf(const rlimit& limit)
{
    return limit.rlim_cur == RLIM_INFINITY ? UINT64_MAX : limit.rlim_cur;
}

} // namespace

std::uint64_t raise()
{
    rlimit now{};
    if (!remember() || ::getrlimit(RLIMIT_NOFILE, &now) != 0)
        return 0;
    if (now.rlim_cur == RLIM_INFINITY)
        return kMostKept;
    const rlim_t wanted = now.rlim_max == RLIM_INFINITY ? kMostKept : std::min<rlim_t>(now.rlim_max, kMostKept);
    if (wanted > now.rlim_cur) {
        rlimit raised = now;
        raised.rlim_cur = wanted;
        if (::setrlimit(RLIMIT_NOFILE, &raised) == 0)
            now = raised;
    }
    return softOf(now);
}

std::uint64_t original()
{
    if (g_remembered)
        return softOf(g_original);
    rlimit now{};
    return ::getrlimit(RLIMIT_NOFILE, &now) == 0 ? softOf(now) : UINT64_MAX;
}

ForChildren::ForChildren()
{
    if (!g_remembered || ::getrlimit(RLIMIT_NOFILE, &m_raised) != 0 || m_raised.rlim_cur == g_original.rlim_cur)
        return;
    rlimit lowered = m_raised;
    lowered.rlim_cur = std::min(g_original.rlim_cur, m_raised.rlim_max);
    m_lowered = ::setrlimit(RLIMIT_NOFILE, &lowered) == 0;
}

ForChildren::~ForChildren()
{
    if (m_lowered)
        ::setrlimit(RLIMIT_NOFILE, &m_raised);
}

} // namespace stowly::linuxdesktop::openfilelimit
