// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "OpenFileBudget.h"
#include "ProcStat.h"
#include "ProcessRoster.h"
#include "platform/ProcessTable.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace stowly::linuxdesktop {

// What /proc/PID/status says about one process, read once per pass.
struct ProcStatus {
    bool readable = false;
    char state = '?';
    std::int32_t ppid = -1;
    std::optional<std::uint32_t> realUid, effectiveUid; // the "Uid:" line's first two
    std::optional<std::uint64_t> vmRssKb, rssAnonKb, rssShmemKb, vmSwapKb;
    // The "Name:" line as the kernel escapes it; equal to /proc/PID/comm unless it holds
    // a backslash (the kernel's escape character), which only comm gives unescaped.
    std::string name; // at most 15 bytes: never allocates
    bool nameIsExact = false;
};

// /proc/PID/status for the current pass over the process table: the memory of the
// processes asked about (those that can count toward an app), each read once a pass. The
// files stay open between passes (re-read from offset 0), which spares an open and a close
// per process and refresh while the budget of kept files lasts.
class ProcStatusCache {
public:
    explicit ProcStatusCache(OpenFileBudget& budget);
    ~ProcStatusCache();
    ProcStatusCache(const ProcStatusCache&) = delete;
    ProcStatusCache& operator=(const ProcStatusCache&) = delete;

    // Starts a new pass: forgets everything read before, closes the files of processes
    // the previous pass did not ask about.
    void beginPass();
    const ProcStatus& status(std::int32_t pid);

    // Status files read so far (for measurements).
    std::uint64_t reads() const { return m_reads; }

private:
    struct OpenFile {
        int fd = -1;
        bool used = false; // asked about in the current pass
    };
    bool readStatus(std::int32_t pid, std::size_t& length);
    void close(std::unordered_map<std::int32_t, OpenFile>::iterator it);

    OpenFileBudget& m_budget;
    std::unordered_map<std::int32_t, ProcStatus> m_entries;
    std::unordered_map<std::int32_t, OpenFile> m_files;
    std::uint64_t m_reads = 0;
    std::vector<char> m_buffer;
    std::chrono::steady_clock::time_point m_passStart{};
};

// Reads a small /proc file whole; nullopt when it cannot be read.
std::optional<std::string> readProcFile(const std::string& path, std::size_t limit = std::size_t{64} * 1024);
ProcStatus parseProcStatus(std::string_view text);
// The process exists and is not a zombie.
bool processIsAlive(std::int32_t pid);

// proc_listallpids & co. over /proc: the listing and the names from the roster, the
// memory from the status files.
class LinuxProcessTable : public ProcessTable {
public:
    LinuxProcessTable(ProcessRoster& roster, ProcStatusCache& cache) : m_roster(roster), m_cache(cache) {}

    int listAllPids(std::int32_t* buffer, int bufferSize) override;
    int name(std::int32_t pid, char* buffer, std::uint32_t bufferSize) override;
    int pidRusage(std::int32_t pid, RusageInfo& info) override;
    int pidTaskInfo(std::int32_t pid, TaskInfo& info) override;

    // Called when a new pass over the process table starts (the counting call).
    std::function<void()> onPassStart;

private:
    ProcessRoster& m_roster;
    ProcStatusCache& m_cache;
    std::vector<std::int32_t> m_listing; // from the counting call, for the filling call
    bool m_haveListing = false;
};

} // namespace stowly::linuxdesktop
