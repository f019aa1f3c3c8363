// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ProcessRoster.h"

#include "Pidfd.h"
#include "ProcStat.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/statfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace stowly::linuxdesktop {

namespace {

constexpr long kProcSuperMagic = 0x9fa0;

// /proc/loadavg's last field counts pids in the reader's own pid namespace; it speaks for
// this /proc only where /proc belongs to that namespace (not in a sandbox that shows the
// host's), and only when it is the kernel's file, not a container tool's stand-in.
int openLastPidSource()
{
    char self[32];
    const ssize_t n = ::readlink("/proc/self", self, sizeof self - 1);
    if (n <= 0)
        return -1;
    self[n] = '\0';
    if (std::strtol(self, nullptr, 10) != ::getpid())
        return -1;
    const int fd = ::open("/proc/loadavg", O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return -1;
    struct statfs fs {};
    if (::fstatfs(fd, &fs) != 0 || fs.f_type != kProcSuperMagic) {
        ::close(fd);
        return -1;
    }
    return fd;
}

std::optional<std::uint64_t> readLastPid(int fd)
{
    char buffer[128];
    ssize_t n;
    do
        n = ::pread(fd, buffer, sizeof buffer, 0);
    while (n < 0 && errno == EINTR);
    if (n <= 0)
        return std::nullopt;
    std::string_view text(buffer, static_cast<std::size_t>(n));
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.remove_suffix(1);
    const std::size_t space = text.rfind(' ');
    if (space == std::string_view::npos || space + 1 == text.size())
        return std::nullopt;
    std::uint64_t value = 0;
    for (const char c : text.substr(space + 1)) {
        if (c < '0' || c > '9' || value > UINT64_MAX / 10)
            return std::nullopt;
        value = value * 10 + static_cast<std::uint64_t>(c - '0');
    }
    return value;
}

} // namespace

ProcessRoster::ProcessRoster(OpenFileBudget& budget) : m_budget(budget)
{
    if (m_budget.hasRoom())
        m_loadavgFd = m_budget.keep(openLastPidSource());
    if (m_budget.hasRoom())
        m_exitWatch = m_budget.keep(::epoll_create1(EPOLL_CLOEXEC));
}

ProcessRoster::~ProcessRoster()
{
    forgetAll();
    m_budget.release(m_exitWatch);
    m_budget.release(m_loadavgFd);
}

void ProcessRoster::closeFiles(Entry& entry)
{
    // Taken out of the watch before it is closed: a copy of the descriptor in a child
    // that has not executed its program yet would otherwise keep it watched.
    if (entry.pidfd >= 0)
        ::epoll_ctl(m_exitWatch, EPOLL_CTL_DEL, entry.pidfd, nullptr);
    for (int* fd : {&entry.pidfd, &entry.commFd}) {
        m_budget.release(*fd);
        *fd = -1;
    }
}

ProcessRoster::Entries::iterator ProcessRoster::forget(Entries::iterator it)
{
    closeFiles(it->second);
    return m_entries.erase(it);
}

void ProcessRoster::forgetAll()
{
    for (auto it = m_entries.begin(); it != m_entries.end();)
        it = forget(it);
}

void ProcessRoster::forgetExited()
{
    if (m_exitWatch < 0)
        return;
    std::array<epoll_event, 64> events{};
    // An ended process stays ready until it is forgotten, so each round takes new ones; the
    // bound only guards against a watch that keeps answering for a pid no longer held.
    for (std::size_t round = 0; round <= m_entries.size() / events.size() + 1; ++round) {
        int ready;
        do
            ready = ::epoll_wait(m_exitWatch, events.data(), static_cast<int>(events.size()), 0);
        while (ready < 0 && errno == EINTR);
        if (ready < 0) {
            // Nothing tells which have ended: every process is read afresh.
            forgetAll();
            m_lastPidSeen.reset();
            return;
        }
        for (int i = 0; i < ready; ++i) {
            const auto it = m_entries.find(static_cast<std::int32_t>(events[static_cast<std::size_t>(i)].data.u64));
            if (it != m_entries.end() && it->second.pidfd >= 0)
                forget(it);
        }
        if (ready < static_cast<int>(events.size()))
            return;
    }
}

ProcessRoster::HandedOut ProcessRoster::pidsHandedOut()
{
    if (m_loadavgFd < 0)
        return {};
    const auto last = readLastPid(m_loadavgFd);
    const auto previous = m_lastPidSeen;
    // Read before /proc is looked at: a pid handed out meanwhile shows next pass.
    m_lastPidSeen = last;
    if (!last || !previous || *last > 0x7fffffff)
        return {};
    if (*last == *previous)
        return {HandedOut::None};
    // The kernel hands pids out upwards and wraps to the bottom after its largest.
    if (*last < *previous || *last - *previous > static_cast<std::uint64_t>(kMostPidsLookedAt))
        return {};
    return {HandedOut::Range, static_cast<std::int32_t>(*previous), static_cast<std::int32_t>(*last)};
}

bool ProcessRoster::lookAt(const HandedOut& range)
{
    for (std::int32_t pid = range.after + 1; pid <= range.upTo && pid > 0; ++pid) {
        if (m_entries.find(pid) != m_entries.end())
            continue; // an older process the counter went past
        // Without room for its files, nothing would tell a thread from a process.
        if (m_exitWatch < 0 || !m_budget.hasRoom(2))
            return false;
        const int pidfd = openPidfd(pid);
        if (pidfd < 0) {
            // ESRCH: ended already. A thread, not a process: EINVAL, or ENOENT on newer kernels.
            if (errno == ESRCH || errno == EINVAL || errno == ENOENT)
                continue;
            return false;
        }
        adopt(pid, pidfd);
    }
    return true;
}

bool ProcessRoster::rereadStat(std::int32_t pid, Entry& entry)
{
    ++m_statReads;
    auto stat = readProcStat(pid);
    if (!stat)
        return false;
    entry.name = std::move(stat->name);
    entry.parent = stat->ppid;
    entry.startTime = stat->startTime;
    entry.kernelThread = stat->isKernelThread();
    return true;
}

bool ProcessRoster::rereadName(std::int32_t pid, Entry& entry)
{
    if (entry.pidfd < 0) {
        // Nothing proves this is still the process read last pass: all of it afresh.
        entry.serial = ++m_nextSerial;
        return rereadStat(pid, entry);
    }
    if (entry.kernelThread)
        return true; // unlisted: its pidfd alone says whether it is still there
    char buffer[64];
    ssize_t n;
    do
        n = ::pread(entry.commFd, buffer, sizeof buffer, 0);
    while (n < 0 && errno == EINTR);
    if (n <= 0)
        return false; // reaped since the poll
    std::string_view name(buffer, static_cast<std::size_t>(n));
    if (name.back() == '\n')
        name.remove_suffix(1);
    if (name != entry.name)
        entry.name.assign(name);
    return true;
}

void ProcessRoster::hold(std::int32_t pid, Entry& entry, int pidfd)
{
    entry.pidfd = m_budget.keep(pidfd);
    if (entry.pidfd < 0)
        return;
    char path[32];
    std::snprintf(path, sizeof path, "/proc/%d/comm", pid);
    entry.commFd = m_budget.keep(::open(path, O_RDONLY | O_CLOEXEC));
    epoll_event watched{};
    watched.events = EPOLLIN;
    watched.data.u64 = static_cast<std::uint32_t>(pid);
    if (entry.commFd < 0 || ::epoll_ctl(m_exitWatch, EPOLL_CTL_ADD, entry.pidfd, &watched) != 0)
        closeFiles(entry); // all or nothing
}

bool ProcessRoster::adopt(std::int32_t pid, int pidfd)
{
    Entry entry;
    if (pidfd < 0 && m_exitWatch >= 0 && m_budget.hasRoom(2))
        pidfd = openPidfd(pid);
    if (pidfd >= 0)
        hold(pid, entry, pidfd);
    // Read after the pidfd was opened: if the pidfd still says alive afterwards, what was
    // read is that process's, not a later one's under the same pid.
    const bool read = rereadStat(pid, entry);
    if (!read || (entry.pidfd >= 0 && hasExited(entry.pidfd))) {
        closeFiles(entry);
        return false;
    }
    if (entry.kernelThread) {
        m_budget.release(entry.commFd); // never read again
        entry.commFd = -1;
    }
    entry.serial = ++m_nextSerial;
    m_entries.emplace(pid, std::move(entry));
    return true;
}

void ProcessRoster::relist()
{
    ++m_listings;
    m_scratch.clear();
    DIR* dir = ::opendir("/proc");
    if (dir == nullptr)
        return;
    while (dirent* item = ::readdir(dir)) {
        const char* name = item->d_name;
        std::int64_t value = 0;
        bool numeric = *name != '\0';
        for (const char* p = name; *p != '\0' && numeric; ++p) {
            numeric = *p >= '0' && *p <= '9';
            value = value * 10 + (*p - '0');
            if (value > 0x7fffffff)
                numeric = false;
        }
        if (numeric && value > 0)
            m_scratch.push_back(static_cast<std::int32_t>(value));
    }
    ::closedir(dir);
    std::sort(m_scratch.begin(), m_scratch.end());
    for (auto it = m_entries.begin(); it != m_entries.end();) {
        if (std::binary_search(m_scratch.begin(), m_scratch.end(), it->first))
            ++it;
        else
            it = forget(it);
    }
    for (const std::int32_t pid : m_scratch)
        if (m_entries.find(pid) == m_entries.end())
            adopt(pid);
}

void ProcessRoster::checkParents()
{
    m_scratch.clear();
    for (auto& [pid, entry] : m_entries) {
        if (entry.pidfd < 0 || entry.kernelThread)
            continue; // read whole this pass, or unlisted
        auto parent = m_entries.find(entry.parent);
        // A namespace's first process never gets another parent.
        const bool known = entry.parentSerial != 0
                               ? parent != m_entries.end() && parent->second.serial == entry.parentSerial
                               : pid == 1;
        if (!known) {
            if (!rereadStat(pid, entry)) {
                m_scratch.push_back(pid);
                continue;
            }
            parent = m_entries.find(entry.parent);
        }
        // A parent outside the roster (another namespace's, or one read without a pidfd)
        // cannot be watched: read again next pass.
        entry.parentSerial =
            parent != m_entries.end() && parent->second.pidfd >= 0 && parent->first != pid ? parent->second.serial : 0;
    }
    for (const std::int32_t pid : m_scratch)
        forget(m_entries.find(pid));
}

void ProcessRoster::refresh()
{
    forgetExited();
    const HandedOut handedOut = pidsHandedOut();
    m_scratch.clear();
    for (auto& [pid, entry] : m_entries)
        if (!rereadName(pid, entry))
            m_scratch.push_back(pid);
    for (const std::int32_t pid : m_scratch)
        forget(m_entries.find(pid));
    if (handedOut.kind == HandedOut::Unknown || (handedOut.kind == HandedOut::Range && !lookAt(handedOut)))
        relist();
    checkParents();
    m_pids.clear();
    m_pids.reserve(m_entries.size());
    for (const auto& [pid, entry] : m_entries)
        if (!entry.kernelThread)
            m_pids.push_back(pid);
    std::sort(m_pids.begin(), m_pids.end());
}

std::optional<std::string> ProcessRoster::name(std::int32_t pid) const
{
    // A kernel thread's name changes with its work and is not kept up to date.
    if (const auto it = m_entries.find(pid); it != m_entries.end() && !it->second.kernelThread)
        return it->second.name;
    ++m_statReads;
    auto stat = readProcStat(pid);
    if (!stat)
        return std::nullopt;
    return std::move(stat->name);
}

std::int32_t ProcessRoster::parent(std::int32_t pid) const
{
    if (const auto it = m_entries.find(pid); it != m_entries.end())
        return it->second.parent;
    ++m_statReads;
    const auto stat = readProcStat(pid);
    return stat ? stat->ppid : -1;
}

const ProcessRoster::Entry* ProcessRoster::heldAndRunning(std::int32_t pid) const
{
    const auto it = m_entries.find(pid);
    if (it == m_entries.end() || it->second.pidfd < 0 || hasExited(it->second.pidfd))
        return nullptr;
    return &it->second;
}

std::optional<std::uint64_t> ProcessRoster::startTime(std::int32_t pid) const
{
    if (pid <= 0)
        return std::nullopt;
    if (const Entry* entry = heldAndRunning(pid))
        return entry->startTime;
    ++m_statReads;
    const auto stat = readProcStat(pid);
    // A zombie keeps its pid until it is reaped: its start time still tells it apart.
    if (!stat || stat->pid != pid)
        return std::nullopt;
    return stat->startTime;
}

bool ProcessRoster::isRunning(std::int32_t pid, std::optional<std::uint64_t> startTime) const
{
    if (pid <= 0)
        return false;
    if (const Entry* entry = heldAndRunning(pid))
        return !startTime || entry->startTime == *startTime;
    ++m_statReads;
    const auto stat = readProcStat(pid);
    return stat && stat->pid == pid && !stat->isZombie() && (!startTime || stat->startTime == *startTime);
}

} // namespace stowly::linuxdesktop
