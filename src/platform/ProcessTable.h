// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>

namespace stowly {

// The two counters the logic reads from the platform's usage records.
struct RusageInfo {                  // rusage_info_v4 (RUSAGE_INFO_V4)
    std::uint64_t physFootprint = 0; // ri_phys_footprint
};
struct TaskInfo {                   // proc_taskinfo (PROC_PIDTASKINFO)
    std::uint64_t residentSize = 0; // pti_resident_size
};
inline constexpr int kTaskInfoSize = 96; // sizeof(struct proc_taskinfo)

// The process information library (libproc), with its own return conventions.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    // proc_listallpids: with no buffer (null, 0) the number of processes; with a buffer
    // of bufferSize bytes, fills it and answers the number of identifiers written.
    // 0 or less on failure.
    virtual int listAllPids(std::int32_t* buffer, int bufferSize) = 0;

    // proc_name: writes the NUL-terminated name, answers its length (> 0 on success).
    virtual int name(std::int32_t pid, char* buffer, std::uint32_t bufferSize) = 0;

    // proc_pid_rusage(pid, RUSAGE_INFO_V4, ...): 0 on success.
    virtual int pidRusage(std::int32_t pid, RusageInfo& info) = 0;

    // proc_pidinfo(pid, PROC_PIDTASKINFO, 0, ...): bytes written, kTaskInfoSize when whole.
    virtual int pidTaskInfo(std::int32_t pid, TaskInfo& info) = 0;
};

} // namespace stowly
