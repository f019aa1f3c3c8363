// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "MinimizeError.h"
#include "NameCollator.h"
#include "ProcessMemoryRecord.h"
#include "RunningAppInfo.h"
#include "platform/Accessibility.h"
#include "platform/ProcessTable.h"
#include "platform/Workspace.h"

#include <QSet>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace stowly {

// The stateless window and process service: every call reads the system afresh
// through the platform interfaces it was given.
class WindowMinimizer {
public:
    WindowMinimizer(Workspace& workspace, Accessibility& accessibility, ProcessTable& processTable);

    // Bulk window actions over every managed app; throw MinimizeError on an unexpected
    // accessibility failure, discarding the partial count.
    std::int64_t minimizeAllWindows();
    std::int64_t closeAllWindows();

    // The open regular apps, largest memory first, ties by name (case-insensitive, as
    // the user's locale collates; a caller that lists again and again passes its own).
    std::vector<RunningAppInfo> runningApps();
    std::vector<RunningAppInfo> runningApps(const NameCollator& collator);

    std::int64_t hideAllApps();           // number asked to hide
    std::int64_t forceTerminateAllApps(); // number sent a forced termination
    bool openApp(std::int32_t pid);
    bool terminateApp(std::int32_t pid);
    bool forceTerminateApp(std::int32_t pid);

    // Building blocks of the operations above; public so that tests can pin each rule.

    // Running apps other than this process, not terminated, regular; by raw name.
    std::vector<RunningApplicationRef> managedApps();
    RunningApplicationRef runningApplication(std::int32_t pid);

    std::vector<AXElementRef> windows(const RunningApplication& app);
    bool isStandardWindow(const AXElementRef& window);
    bool minimize(const AXElementRef& window);
    bool close(const AXElementRef& window);
    std::optional<std::string> copyStringAttribute(const std::string& name, const AXElementRef& from);
    std::optional<bool> copyBoolAttribute(const std::string& name, const AXElementRef& from);

    std::vector<std::int32_t> allPIDs();
    std::optional<QString> processName(std::int32_t pid);
    static std::optional<QString> normalizedProcessName(const std::optional<QString>& name);
    std::optional<std::uint64_t> memoryUsage(std::int32_t pid);
    std::vector<ProcessMemoryRecord> groupedProcessMemory();
    std::optional<std::uint64_t> totalMemory(const RunningApplication& app,
                                             const std::vector<ProcessMemoryRecord>& processMemory);

private:
    // Whether a process can count toward any of the given apps: the union of totalMemory's
    // rules over them, so that the memory of a process no app can claim is never read.
    class MemoryClaims {
    public:
        explicit MemoryClaims(const std::vector<RunningApplicationRef>& apps);
        bool mayClaim(const ProcessMemoryRecord& record) const;

    private:
        QSet<QString> m_bundles; // lower-cased
        QSet<QString> m_names;   // normalized
        QSet<std::int32_t> m_pids;
    };

    // Every process but this one with its name and owning app's identifier; no memory yet.
    std::vector<ProcessMemoryRecord> namedProcesses();
    // The records that count, with their memory; those without any are left out.
    template <typename Counts>
    std::vector<ProcessMemoryRecord> withMemory(std::vector<ProcessMemoryRecord> processes, Counts counts);

    // totalMemory with the records' bundle identifiers already lower-cased (same order),
    // so that one refresh lower-cases each of them once rather than once per app.
    std::optional<std::uint64_t> totalMemory(const RunningApplication& app,
                                             const std::vector<ProcessMemoryRecord>& processMemory,
                                             const std::vector<std::optional<QString>>& lowerBundles);
    static std::vector<std::optional<QString>>
    lowerBundleIdentifiers(const std::vector<ProcessMemoryRecord>& processMemory);

    template <typename WindowOperation>
    std::int64_t countOverManagedWindows(WindowOperation operation);

    Workspace& m_workspace;
    Accessibility& m_accessibility;
    ProcessTable& m_processTable;
};

} // namespace stowly
