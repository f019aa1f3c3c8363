// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ProcFs.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace stowly::linuxdesktop {

namespace {

// Values older than this are not trusted even within one pass.
constexpr auto kPassLifetime = std::chrono::seconds(2);

std::optional<std::uint64_t> parseKb(std::string_view value)
{
    while (!value.empty() && (value.front() == ' ' || value.front() == '\t'))
        value.remove_prefix(1);
    std::uint64_t result = 0;
    std::size_t digits = 0;
    while (digits < value.size() && value[digits] >= '0' && value[digits] <= '9') {
        if (result > (UINT64_MAX - 9) / 10)
            return std::nullopt;
        result = result * 10 + static_cast<std::uint64_t>(value[digits] - '0');
        ++digits;
    }
    if (digits == 0)
        return std::nullopt;
    return result;
}

// Guards the byte conversion: kB * 1024 must not wrap.
std::uint64_t kbToBytes(std::uint64_t kb)
{
    return kb > UINT64_MAX / 1024 ? UINT64_MAX : kb * 1024;
}

std::string pidPath(std::int32_t pid, const char* leaf)
{
    return "/proc/" + std::to_string(pid) + "/" + leaf;
}

} // namespace

std::optional<std::string> readProcFile(const std::string& path, std::size_t limit)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    std::string out;
    char chunk[4096];
    while (out.size() < limit) {
        const ssize_t n = ::read(fd, chunk, sizeof chunk);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            ::close(fd);
            return std::nullopt; // e.g. ESRCH when the process exited mid-read
        }
        if (n == 0)
            break;
        out.append(chunk, static_cast<std::size_t>(n));
    }
    ::close(fd);
    if (out.size() > limit)
        out.resize(limit);
    return out;
}

ProcStatus parseProcStatus(std::string_view text)
{
    ProcStatus status;
    status.readable = true;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        const std::string_view line(text.data() + start, end - start);
        start = end + 1;
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos)
            continue;
        const std::string_view key = line.substr(0, colon);
        const std::string_view value = line.substr(colon + 1);
        if (key == "Name") {
            std::string_view name = value;
            if (!name.empty() && name.front() == '\t')
                name.remove_prefix(1);
            // comm is at most 15 bytes; a longer line can only come from escapes.
            status.nameIsExact = name.size() <= 15 && name.find('\\') == std::string_view::npos;
            if (status.nameIsExact)
                status.name.assign(name);
        } else if (key == "State") {
            const auto letter = value.find_first_not_of(" \t");
            if (letter != std::string_view::npos)
                status.state = value[letter];
        } else if (key == "PPid") {
            if (const auto ppid = parseKb(value); ppid && *ppid <= 0x7fffffff)
                status.ppid = static_cast<std::int32_t>(*ppid);
        } else if (key == "Uid") {
            std::string_view rest = value;
            std::optional<std::uint64_t> ids[2];
            for (auto& id : ids) {
                while (!rest.empty() && (rest.front() == ' ' || rest.front() == '\t'))
                    rest.remove_prefix(1);
                id = parseKb(rest);
                rest.remove_prefix(std::min(rest.size(), rest.find_first_of(" \t")));
            }
            if (ids[0] && ids[1] && *ids[0] <= UINT32_MAX && *ids[1] <= UINT32_MAX) {
                status.realUid = static_cast<std::uint32_t>(*ids[0]);
                status.effectiveUid = static_cast<std::uint32_t>(*ids[1]);
            }
        } else if (key == "VmRSS") {
            status.vmRssKb = parseKb(value);
        } else if (key == "RssAnon") {
            status.rssAnonKb = parseKb(value);
        } else if (key == "RssShmem") {
            status.rssShmemKb = parseKb(value);
        } else if (key == "VmSwap") {
            status.vmSwapKb = parseKb(value);
            // The kernel writes the memory lines after the identity lines and VmSwap last
            // of them; the signal masks, capabilities and CPU lists after it are not read.
            if (status.state != '?' && status.ppid >= 0 && status.realUid && status.vmRssKb && status.rssAnonKb)
                break;
        }
    }
    return status;
}

bool processIsAlive(std::int32_t pid)
{
    if (pid <= 0)
        return false;
    if (::kill(pid, 0) != 0 && errno == ESRCH)
        return false;
    // A zombie has exited; only its parent's wait is missing.
    const auto stat = readProcFile(pidPath(pid, "stat"), 4096);
    if (!stat)
        return false;
    const auto paren = stat->rfind(')');
    if (paren == std::string::npos || paren + 2 >= stat->size())
        return true;
    const char state = (*stat)[paren + 2];
    return state != 'Z' && state != 'X' && state != 'x';
}

ProcStatusCache::ProcStatusCache(OpenFileBudget& budget) : m_budget(budget), m_buffer(std::size_t{16} * 1024) {}

ProcStatusCache::~ProcStatusCache()
{
    for (auto it = m_files.begin(); it != m_files.end();)
        close(it++);
}

void ProcStatusCache::close(std::unordered_map<std::int32_t, OpenFile>::iterator it)
{
    m_budget.release(it->second.fd);
    m_files.erase(it);
}

void ProcStatusCache::beginPass()
{
    m_entries.clear();
    for (auto it = m_files.begin(); it != m_files.end();) {
        if (!it->second.used) {
            close(it++);
        } else {
            it->second.used = false;
            ++it;
        }
    }
    m_passStart = std::chrono::steady_clock::now();
}

// Fills m_buffer with the status text of pid; false when the process cannot be read.
bool ProcStatusCache::readStatus(std::int32_t pid, std::size_t& length)
{
    ++m_reads;
    const auto kept = m_files.find(pid);
    if (kept != m_files.end()) {
        kept->second.used = true;
        const ssize_t n = ::pread(kept->second.fd, m_buffer.data(), m_buffer.size(), 0);
        if (n > 0 && static_cast<std::size_t>(n) < m_buffer.size()) {
            length = static_cast<std::size_t>(n);
            return true;
        }
        // The process this file belonged to is gone (the pid may be someone else's now).
        close(kept);
    }
    char path[32];
    std::snprintf(path, sizeof path, "/proc/%d/status", pid);
    const int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    ssize_t n;
    do
        n = ::read(fd, m_buffer.data(), m_buffer.size());
    while (n < 0 && errno == EINTR);
    if (n <= 0 || static_cast<std::size_t>(n) >= m_buffer.size()) {
        ::close(fd);
        return false;
    }
    length = static_cast<std::size_t>(n);
    if (const int kept = m_budget.keep(fd); kept >= 0)
        m_files.emplace(pid, OpenFile{kept, true});
    return true;
}

const ProcStatus& ProcStatusCache::status(std::int32_t pid)
{
    if (std::chrono::steady_clock::now() - m_passStart > kPassLifetime)
        beginPass();
    const auto it = m_entries.find(pid);
    if (it != m_entries.end())
        return it->second;
    ProcStatus status;
    std::size_t length = 0;
    if (pid > 0 && readStatus(pid, length)) {
        status = parseProcStatus(std::string_view(m_buffer.data(), length));
    }
    return m_entries.emplace(pid, std::move(status)).first->second;
}

int LinuxProcessTable::listAllPids(std::int32_t* buffer, int bufferSize)
{
    if (buffer == nullptr || bufferSize <= 0) {
        // The counting call opens a pass; the filling call follows right away and is
        // answered from the same listing, so that the two agree.
        m_cache.beginPass();
        m_roster.refresh();
        if (onPassStart)
            onPassStart();
        m_listing = m_roster.pids();
        m_haveListing = true;
        return static_cast<int>(std::min<std::size_t>(m_listing.size(), 0x7fffffff));
    }
    std::vector<std::int32_t> listing;
    if (m_haveListing) {
        listing.swap(m_listing);
        m_haveListing = false;
    } else {
        m_roster.refresh();
        listing = m_roster.pids();
    }
    const std::size_t capacity = static_cast<std::size_t>(bufferSize) / sizeof(std::int32_t);
    const std::size_t count = std::min(capacity, listing.size());
    std::copy_n(listing.begin(), count, buffer);
    return static_cast<int>(count);
}

int LinuxProcessTable::name(std::int32_t pid, char* buffer, std::uint32_t bufferSize)
{
    if (buffer == nullptr || bufferSize == 0 || pid <= 0)
        return 0;
    auto known = m_roster.name(pid);
    if (!known)
        return 0;
    std::string name = std::move(*known);
    // The kernel keeps 15 bytes of a name; argv[0] often has the whole of it.
    if (name.size() == 15) {
        if (const auto cmdline = readProcFile(pidPath(pid, "cmdline"), 4096)) {
            std::string argv0 = cmdline->substr(0, cmdline->find('\0'));
            const auto slash = argv0.rfind('/');
            if (slash != std::string::npos)
                argv0.erase(0, slash + 1);
            if (argv0.size() > name.size() && argv0.compare(0, name.size(), name) == 0)
                name = argv0;
        }
    }
    if (name.empty())
        return 0;
    const std::size_t length = std::min<std::size_t>(name.size(), bufferSize - 1);
    std::memcpy(buffer, name.data(), length);
    buffer[length] = '\0';
    return static_cast<int>(length);
}

int LinuxProcessTable::pidRusage(std::int32_t pid, RusageInfo& info)
{
    const ProcStatus& status = m_cache.status(pid);
    // Kernel threads and zombies have no memory lines at all.
    if (!status.readable || !status.rssAnonKb)
        return -1;
    const std::uint64_t kb = *status.rssAnonKb + status.rssShmemKb.value_or(0) + status.vmSwapKb.value_or(0);
    info.physFootprint = kbToBytes(kb);
    return 0;
}

int LinuxProcessTable::pidTaskInfo(std::int32_t pid, TaskInfo& info)
{
    const ProcStatus& status = m_cache.status(pid);
    if (!status.readable || !status.vmRssKb)
        return 0;
    info.residentSize = kbToBytes(*status.vmRssKb);
    return kTaskInfoSize;
}

} // namespace stowly::linuxdesktop
