// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "ProcessRoster.h"
#include "platform/Workspace.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace stowly::linuxdesktop {

// What one listing says about one process that owns windows, on any window system.
struct AppRecord {
    std::int32_t pid = 0;
    ActivationPolicy policy = ActivationPolicy::accessory;
    std::optional<std::string> name;
    std::optional<std::string> bundleId;
    AppIconRef icon;
    bool hidden = false;
    bool active = false;
    std::optional<std::uint64_t> startTime; // of the process, when the listing read it
};

// The start time of every app the latest listing showed, by pid: what the user's later
// commands refer to.
class ListedStartTimes {
public:
    void remember(const std::vector<RunningApplicationRef>& listed);
    std::optional<std::uint64_t> intended(std::int32_t pid, std::optional<std::uint64_t> seen) const;

private:
    std::unordered_map<std::int32_t, std::uint64_t> m_startTimes;
};

// What a window system does with the windows of one process. Each backend's workspace
// answers these, so that what a listed app does with them is written once.
class ProcessWindows {
public:
    virtual ~ProcessWindows() = default;

    // A process has the pid and is not a zombie; with a start time, only that very process.
    virtual bool isProcessAlive(std::int32_t pid, std::optional<std::uint64_t> startTime) = 0;
    // The start time of the process a command for `pid` is meant for: the one the latest
    // listing showed under that pid, else `seen` (what the command's own lookup saw).
    std::optional<std::uint64_t> intendedStartTime(std::int32_t pid, std::optional<std::uint64_t> seen) const
    {
        return m_listed.intended(pid, seen);
    }
    // Requests on the process's live windows, read afresh.
    virtual bool hideProcess(std::int32_t pid) = 0;
    virtual bool activateProcess(std::int32_t pid) = 0;
    virtual bool closeProcessWindows(std::int32_t pid) = 0;

protected:
    ListedStartTimes m_listed; // the workspace remembers each listing the user sees
};

// One listed app. Its commands go to the windows of its process; the signals only to that
// very process (see signalListedProcess), never to one that took its pid over since.
class ListedApplication : public RunningApplication {
public:
    ListedApplication(ProcessWindows& windows, AppRecord record) : m_windows(windows), m_record(std::move(record)) {}

    std::int32_t processIdentifier() const override { return m_record.pid; }
    // The listed process: a newcomer given its pid does not bring it back.
    bool isTerminated() const override { return !m_windows.isProcessAlive(m_record.pid, m_record.startTime); }
    ActivationPolicy activationPolicy() const override { return m_record.policy; }
    std::optional<std::string> localizedName() const override { return m_record.name; }
    std::optional<std::string> bundleIdentifier() const override { return m_record.bundleId; }
    AppIconRef icon() const override { return m_record.icon; }
    bool isHidden() const override { return m_record.hidden; }
    bool isActive() const override { return m_record.active; }
    std::optional<std::uint64_t> startTime() const { return m_record.startTime; }

    bool hide() override { return m_windows.hideProcess(m_record.pid); }
    bool terminate() override;
    bool forceTerminate() override;
    // Linux window systems raise every window of the app; there are no options to honour.
    bool activate(unsigned options) override;

private:
    ProcessWindows& m_windows;
    AppRecord m_record;
};

using AppsByPid = std::unordered_map<std::int32_t, RunningApplicationRef>;

// The app owning windows in `pid`, else the nearest ancestor process that is one, so that
// helper processes count for their app. `memo` (optional) keeps the answers of one pass.
RunningApplicationRef owningApplication(std::int32_t pid, const AppsByPid& apps, ProcessRoster& processes,
                                        AppsByPid* memo = nullptr);

} // namespace stowly::linuxdesktop
