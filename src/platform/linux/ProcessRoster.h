// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "OpenFileBudget.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace stowly::linuxdesktop {

// The processes of the machine, kept from one pass over the process table to the next:
// their pids, names and parents, each as a fresh read would give it. A pass re-reads only
// what can change unseen. The name, because a process may execute another program: one
// small read per process. The parent, only once the recorded one has exited, which its
// pidfd tells without a read (the kernel hands an orphan to a new parent then, and only
// then). Exits show on the pidfds, all watched by one epoll instance, so that a pass asks
// once and hears only of the processes that ended. New processes: only when the kernel
// has handed out a pid since the last pass, and then only the pids handed out are looked
// at (most of them are threads), unless there were too many or the counter wrapped; then
// /proc is read whole. Kernel threads are left out of the list: they have no memory and
// no windows, so no app can count them; each is kept by its pidfd alone, so that it is
// neither read again nor taken for new.
class ProcessRoster {
public:
    explicit ProcessRoster(OpenFileBudget& budget);
    ~ProcessRoster();
    ProcessRoster(const ProcessRoster&) = delete;
    ProcessRoster& operator=(const ProcessRoster&) = delete;

    // Brings the roster up to date with the machine: the start of every pass.
    void refresh();

    // The processes as of the last refresh, kernel threads left out, in ascending order.
    const std::vector<std::int32_t>& pids() const { return m_pids; }

    // The kernel's name for the process (comm: at most 15 bytes, unescaped) as of the last
    // refresh; a process the roster does not know is read now. nullopt when it is gone.
    std::optional<std::string> name(std::int32_t pid) const;

    // Its parent's pid (0 for a parent outside this pid namespace) as of the last refresh;
    // a process the roster does not know is read now. -1 when it is gone.
    std::int32_t parent(std::int32_t pid) const;

    // Asked now, not as of the last refresh: a process the roster holds by its pidfd answers
    // without a read while the pidfd says it runs (a pidfd stays bound to the process it was
    // opened for, never to a later one given the same pid); any other is read now.
    // When the process that has the pid started (clock ticks after boot), a zombie's too;
    // nullopt when none has it.
    std::optional<std::uint64_t> startTime(std::int32_t pid) const;
    // Whether a process has the pid and has not exited; with a start time, only the process
    // that started then counts.
    bool isRunning(std::int32_t pid, std::optional<std::uint64_t> startTime = std::nullopt) const;

    // More pids handed out than this between two passes, and /proc is read whole rather than
    // each of them looked at.
    static constexpr std::int32_t kMostPidsLookedAt = 128;

    // For measurements and tests: readings of the whole /proc directory, and reads of
    // /proc/PID/stat (where parents and start times come from), since the roster was made.
    std::uint64_t listings() const { return m_listings; }
    std::uint64_t statReads() const { return m_statReads; }
    // Whether new processes show without reading /proc whole (the kernel's last pid is
    // readable for this /proc).
    bool seesNewPids() const { return m_loadavgFd >= 0; }

private:
    struct Entry {
        int pidfd = -1;  // proves the process is the one first read; -1 over budget
        int commFd = -1; // its name, re-read each pass; -1 over budget
        std::string name;
        std::int32_t parent = -1;
        std::uint64_t startTime = 0;
        std::uint64_t serial = 0;       // new for every process, and every pass for one without a pidfd
        std::uint64_t parentSerial = 0; // the parent's serial when parent was read; 0: read it each pass
        bool kernelThread = false;
    };

    // The pids handed out since the last pass: none, the range (after, upTo], or unknown.
    struct HandedOut {
        enum Kind { None, Range, Unknown } kind = Unknown;
        std::int32_t after = 0;
        std::int32_t upTo = 0;
    };

    void forgetExited();
    void forgetAll();
    HandedOut pidsHandedOut();
    bool lookAt(const HandedOut& range);
    void relist();
    bool adopt(std::int32_t pid, int pidfd = -1);
    void hold(std::int32_t pid, Entry& entry, int pidfd);
    bool rereadName(std::int32_t pid, Entry& entry);
    bool rereadStat(std::int32_t pid, Entry& entry);
    void closeFiles(Entry& entry);
    // The entry of the process that has the pid, when a pidfd shows it still runs.
    const Entry* heldAndRunning(std::int32_t pid) const;
    void checkParents();
    using Entries = std::unordered_map<std::int32_t, Entry>;
    Entries::iterator forget(Entries::iterator it);

    OpenFileBudget& m_budget;
    Entries m_entries;
    std::vector<std::int32_t> m_pids;
    std::vector<std::int32_t> m_scratch;
    std::uint64_t m_nextSerial = 0;
    std::uint64_t m_listings = 0;
    mutable std::uint64_t m_statReads = 0;
    int m_loadavgFd = -1; // its last field: the pid the kernel handed out last
    int m_exitWatch = -1; // epoll over every kept pidfd; without it, no pidfd is kept
    std::optional<std::uint64_t> m_lastPidSeen;
};

} // namespace stowly::linuxdesktop
