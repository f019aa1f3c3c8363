// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ProcStat.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <limits>
#include <type_traits>

namespace stowly::linuxdesktop {

namespace {

// One space-separated decimal field; signed fields may carry a leading '-'.
template <typename T>
bool takeNumber(std::string_view& rest, T& out)
{
    if (rest.empty() || rest.front() != ' ')
        return false;
    rest.remove_prefix(1);
    bool negative = false;
    if (!rest.empty() && rest.front() == '-') {
        negative = true;
        rest.remove_prefix(1);
    }
    std::uint64_t value = 0;
    std::size_t digits = 0;
    while (digits < rest.size() && rest[digits] >= '0' && rest[digits] <= '9') {
        if (value > (UINT64_MAX - 9) / 10)
            return false;
        value = value * 10 + static_cast<std::uint64_t>(rest[digits] - '0');
        ++digits;
    }
    if (digits == 0)
        return false;
    rest.remove_prefix(digits);
    if constexpr (std::is_signed_v<T>) {
        if (value > static_cast<std::uint64_t>(std::numeric_limits<T>::max()))
            return false;
        out = negative ? -static_cast<T>(value) : static_cast<T>(value);
    } else {
        if (negative)
            return false;
        out = static_cast<T>(value);
    }
    return true;
}

bool skipField(std::string_view& rest)
{
    if (rest.empty() || rest.front() != ' ')
        return false;
    rest.remove_prefix(1);
    const std::size_t end = rest.find(' ');
    if (end == 0)
        return false;
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end);
    return true;
}

} // namespace

std::optional<ProcStat> parseProcStat(std::string_view text)
{
    ProcStat stat;
    const std::size_t open = text.find(" (");
    const std::size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open + 1)
        return std::nullopt;
    std::string_view head = text.substr(0, open);
    // The pid: a plain positive decimal before the name.
    std::uint64_t pid = 0;
    if (head.empty() || head.size() > 10)
        return std::nullopt;
    for (const char c : head) {
        if (c < '0' || c > '9')
            return std::nullopt;
        pid = pid * 10 + static_cast<std::uint64_t>(c - '0');
    }
    if (pid == 0 || pid > 0x7fffffff)
        return std::nullopt;
    stat.pid = static_cast<std::int32_t>(pid);
    stat.name.assign(text.substr(open + 2, close - open - 2));

    std::string_view rest = text.substr(close + 1); // " S 1 ..."
    if (rest.size() < 3 || rest[0] != ' ' || rest[2] != ' ')
        return std::nullopt;
    stat.state = rest[1];
    rest.remove_prefix(2);
    // Fields 4 to 6: ppid, pgrp, session; 7 and 8 are skipped; 9 is the flags; 10 to 21
    // are skipped; 22 is the start time.
    if (!takeNumber(rest, stat.ppid) || !takeNumber(rest, stat.pgrp) || !takeNumber(rest, stat.session))
        return std::nullopt;
    if (!skipField(rest) || !skipField(rest) || !takeNumber(rest, stat.flags))
        return std::nullopt;
    for (int field = 10; field <= 21; ++field)
        if (!skipField(rest))
            return std::nullopt;
    if (!takeNumber(rest, stat.startTime))
        return std::nullopt;
    return stat;
}

std::optional<ProcStat> readProcStat(std::int32_t pid)
{
    if (pid <= 0)
        return std::nullopt;
    char path[32];
    std::snprintf(path, sizeof path, "/proc/%d/stat", pid);
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    char buffer[1024];
    ssize_t n;
    do
        n = ::read(fd, buffer, sizeof buffer);
    while (n < 0 && errno == EINTR);
    ::close(fd);
    if (n <= 0)
        return std::nullopt;
    auto stat = parseProcStat(std::string_view(buffer, static_cast<std::size_t>(n)));
    if (stat && stat->pid != pid)
        return std::nullopt;
    return stat;
}

} // namespace stowly::linuxdesktop
