// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace stowly::linuxdesktop {

// The fields of /proc/PID/stat this backend relies on. The start time (clock ticks after
// boot) tells two processes apart that were given the same pid one after the other.
struct ProcStat {
    std::int32_t pid = 0;
    char state = '?';
    std::int32_t ppid = 0;
    std::int32_t pgrp = 0;
    std::int32_t session = 0;
    std::uint64_t flags = 0; // the kernel's PF_* flags of the task
    std::uint64_t startTime = 0;
    std::string name; // between the parentheses: the kernel's name, unescaped, at most 15 bytes

    // Exited, only its parent's wait is missing (or dying).
    bool isZombie() const { return state == 'Z' || state == 'X' || state == 'x'; }
    // A thread of the kernel's own (PF_KTHREAD): no memory, no windows, never an app's.
    bool isKernelThread() const { return (flags & 0x00200000u) != 0; }
};

// Parses one /proc/PID/stat text. The name between the parentheses may hold anything, a
// ')' included, so the fields are counted from the last ')'. nullopt unless every field
// up to the start time is there and well formed.
std::optional<ProcStat> parseProcStat(std::string_view text);

// Reads and parses /proc/PID/stat; nullopt when the process is gone or the file is odd.
std::optional<ProcStat> readProcStat(std::int32_t pid);

} // namespace stowly::linuxdesktop
