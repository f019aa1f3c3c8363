// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "MacProcessTable.h"

#include <libproc.h>
#include <sys/resource.h>
#include <sys/types.h>

#include <cstdint>
#include <type_traits>

namespace stowly::macos {

static_assert(sizeof(pid_t) == sizeof(std::int32_t), "pid buffers are handed to libproc as they are");
static_assert(sizeof(struct proc_taskinfo) == kTaskInfoSize, "the logic tests for a whole proc_taskinfo by its size");
static_assert(sizeof(struct rusage_info_v4) == 296, "rusage_info_v4 as the kernel fills it");
static_assert(std::is_same_v<decltype(rusage_info_v4::ri_phys_footprint), uint64_t>);
static_assert(std::is_same_v<decltype(proc_taskinfo::pti_resident_size), uint64_t>);

int MacProcessTable::listAllPids(std::int32_t* buffer, int bufferSize)
{
    // With a null buffer and size 0 the answer is the number of processes.
    return proc_listallpids(buffer, bufferSize);
}

int MacProcessTable::name(std::int32_t pid, char* buffer, std::uint32_t bufferSize)
{
    return proc_name(pid, buffer, bufferSize);
}

int MacProcessTable::pidRusage(std::int32_t pid, RusageInfo& info)
{
    struct rusage_info_v4 usage = {};
    const int result = proc_pid_rusage(pid, RUSAGE_INFO_V4, reinterpret_cast<rusage_info_t*>(&usage));
    if (result == 0)
        info.physFootprint = usage.ri_phys_footprint;
    return result;
}

int MacProcessTable::pidTaskInfo(std::int32_t pid, TaskInfo& info)
{
    struct proc_taskinfo task = {};
    const int written = proc_pidinfo(pid, PROC_PIDTASKINFO, 0, &task, sizeof task);
    if (written == static_cast<int>(sizeof task))
        info.residentSize = task.pti_resident_size;
    return written;
}

} // namespace stowly::macos
