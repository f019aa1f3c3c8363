// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "WindowMinimizer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>

namespace stowly {

namespace {

// Counts and sums overflowing are programming errors, never wrapped or clamped.
template <typename T>
T checkedAdd(T a, T b)
{
    T sum{};
    if (__builtin_add_overflow(a, b, &sum))
        std::abort();
    return sum;
}

QString fromUtf8(const std::optional<std::string>& text)
{
    return text ? QString::fromStdString(*text) : QString();
}

// Plain, case-sensitive order of the Unicode text; canonically equivalent texts compare
// equal because both sides are compared in NFC, scalar by scalar. The key is made once
// per name, not once per comparison.
QList<uint> unicodeOrderKey(const QString& text)
{
    return text.normalized(QString::NormalizationForm_C).toUcs4();
}

// Brackets the requests of one walk over many windows. The end comes however the walk
// ends, so that what was accepted before a MinimizeError still goes out.
class RequestBatch {
public:
    explicit RequestBatch(Accessibility& accessibility) : m_accessibility(accessibility)
    {
        m_accessibility.beginRequestBatch();
    }
    ~RequestBatch() { m_accessibility.endRequestBatch(); }
    RequestBatch(const RequestBatch&) = delete;
    RequestBatch& operator=(const RequestBatch&) = delete;

private:
    Accessibility& m_accessibility;
};

} // namespace

WindowMinimizer::WindowMinimizer(Workspace& workspace, Accessibility& accessibility, ProcessTable& processTable)
    : m_workspace(workspace), m_accessibility(accessibility), m_processTable(processTable)
{
}

// ---- Window operations through accessibility ------------------------------------

template <typename WindowOperation>
std::int64_t WindowMinimizer::countOverManagedWindows(WindowOperation operation)
{
    const RequestBatch batch(m_accessibility);
    std::int64_t count = 0;
    for (const auto& app : managedApps()) {
        for (const auto& window : windows(*app)) {
            // A MinimizeError leaves this loop at once; the partial count is dropped.
            if (operation(window))
                count = checkedAdd<std::int64_t>(count, 1);
        }
    }
    return count;
}

std::int64_t WindowMinimizer::minimizeAllWindows()
{
    return countOverManagedWindows([this](const AXElementRef& window) { return minimize(window); });
}

std::int64_t WindowMinimizer::closeAllWindows()
{
    return countOverManagedWindows([this](const AXElementRef& window) { return close(window); });
}

std::vector<AXElementRef> WindowMinimizer::windows(const RunningApplication& app)
{
    // The application element lives only for this read.
    const AXElementRef application = m_accessibility.createApplication(app.processIdentifier());
    AXValue value;
    if (m_accessibility.copyAttributeValue(application, kAXWindowsAttribute, value) != kAXErrorSuccess)
        return {};
    if (auto* list = std::get_if<AXElementList>(&value))
        return std::move(*list);
    return {};
}

bool WindowMinimizer::isStandardWindow(const AXElementRef& window)
{
    const auto role = copyStringAttribute(kAXRoleAttribute, window);
    if (!role || *role != kAXWindowRole)
        return false;
    // Only the two dialog subroles are excluded; no subrole or any other counts as standard.
    const auto subrole = copyStringAttribute(kAXSubroleAttribute, window);
    return !(subrole && (*subrole == kAXDialogSubrole || *subrole == kAXSystemDialogSubrole));
}

bool WindowMinimizer::minimize(const AXElementRef& window)
{
    if (!isStandardWindow(window))
        return false;
    const auto minimized = copyBoolAttribute(kAXMinimizedAttribute, window);
    if (!minimized || *minimized)
        return false;
    const AXError code = m_accessibility.setAttributeValue(window, kAXMinimizedAttribute, AXValue(true));
    if (code == kAXErrorAttributeUnsupported)
        return false;
    if (code == kAXErrorSuccess)
        return true;
    throw MinimizeError::axFailure(code);
}

bool WindowMinimizer::close(const AXElementRef& window)
{
    // Unlike minimize, the minimized state is not consulted: a minimized window is closed too.
    if (!isStandardWindow(window))
        return false;
    AXValue value;
    if (m_accessibility.copyAttributeValue(window, kAXCloseButtonAttribute, value) != kAXErrorSuccess)
        return false;
    if (std::holds_alternative<AXAbsent>(value))
        return false;
    // A close button of any other type is a backend programming error.
    auto* button = std::get_if<AXElementRef>(&value);
    if (!button)
        std::abort();
    if (!*button)
        return false;
    const AXError code = m_accessibility.performAction(*button, kAXPressAction);
    if (code == kAXErrorActionUnsupported)
        return false;
    if (code == kAXErrorSuccess)
        return true;
    throw MinimizeError::axFailure(code);
}

std::optional<std::string> WindowMinimizer::copyStringAttribute(const std::string& name, const AXElementRef& from)
{
    AXValue value;
    if (m_accessibility.copyAttributeValue(from, name, value) != kAXErrorSuccess)
        return std::nullopt;
    if (auto* text = std::get_if<std::string>(&value))
        return *text;
    return std::nullopt;
}

std::optional<bool> WindowMinimizer::copyBoolAttribute(const std::string& name, const AXElementRef& from)
{
    AXValue value;
    if (m_accessibility.copyAttributeValue(from, name, value) != kAXErrorSuccess)
        return std::nullopt;
    if (auto* flag = std::get_if<bool>(&value))
        return *flag;
    // A number converts only when it holds exactly 0 or 1.
    if (auto* number = std::get_if<AXNumber>(&value)) {
        if (number->value == 0.0)
            return false;
        if (number->value == 1.0)
            return true;
    }
    return std::nullopt;
}

// ---- Managed apps and app commands ----------------------------------------------

std::vector<RunningApplicationRef> WindowMinimizer::managedApps()
{
    const std::int32_t ownPid = m_workspace.currentProcessIdentifier();
    std::vector<RunningApplicationRef> apps;
    for (auto& app : m_workspace.runningApplications()) {
        if (!app || app->processIdentifier() == ownPid)
            continue;
        if (app->isTerminated())
            continue;
        if (app->activationPolicy() != ActivationPolicy::regular)
            continue;
        apps.push_back(std::move(app));
    }

    std::vector<std::pair<QList<uint>, RunningApplicationRef>> named;
    named.reserve(apps.size());
    for (auto& app : apps)
        named.emplace_back(unicodeOrderKey(fromUtf8(app->localizedName())), std::move(app));
    std::stable_sort(named.begin(), named.end(), [](const auto& a, const auto& b) {
        return std::lexicographical_compare(a.first.begin(), a.first.end(), b.first.begin(), b.first.end());
    });

    std::vector<RunningApplicationRef> sorted;
    sorted.reserve(named.size());
    for (auto& entry : named)
        sorted.push_back(std::move(entry.second));
    return sorted;
}

std::vector<RunningAppInfo> WindowMinimizer::runningApps()
{
    return runningApps(NameCollator());
}

std::vector<RunningAppInfo> WindowMinimizer::runningApps(const NameCollator& collator)
{
    // One walk over the process table serves every app of this call. It comes before the
    // apps are listed (a platform may answer both from one reading of the windows); the
    // memory is read after, and only for processes that can count toward one of them.
    std::vector<ProcessMemoryRecord> processes = namedProcesses();
    const std::vector<RunningApplicationRef> apps = managedApps();
    const MemoryClaims claims(apps);
    const std::vector<ProcessMemoryRecord> records = withMemory(
        std::move(processes), [&claims](const ProcessMemoryRecord& record) { return claims.mayClaim(record); });
    const auto lowerBundles = lowerBundleIdentifiers(records);

    std::vector<RunningAppInfo> infos;
    for (const auto& app : apps) {
        const auto name = app->localizedName();
        infos.push_back(RunningAppInfo{
            app->processIdentifier(),
            name ? QString::fromStdString(*name) : QStringLiteral("Unknown App"),
            app->icon(),
            app->isHidden(),
            app->isActive(),
            totalMemory(*app, records, lowerBundles),
        });
    }

    std::stable_sort(infos.begin(), infos.end(), [&collator](const RunningAppInfo& a, const RunningAppInfo& b) {
        const std::uint64_t ma = a.memoryBytes.value_or(0);
        const std::uint64_t mb = b.memoryBytes.value_or(0);
        if (ma != mb)
            return ma > mb;
        return collator.compare(a.name, b.name) < 0;
    });
    return infos;
}

RunningApplicationRef WindowMinimizer::runningApplication(std::int32_t pid)
{
    for (auto& app : m_workspace.runningApplications()) {
        if (app && app->processIdentifier() == pid && !app->isTerminated())
            return app;
    }
    return nullptr;
}

std::int64_t WindowMinimizer::hideAllApps()
{
    std::vector<RunningApplicationRef> visible;
    for (auto& app : managedApps()) {
        if (!app->isHidden())
            visible.push_back(std::move(app));
    }
    for (const auto& app : visible)
        app->hide(); // the count is of apps asked, not of apps that agreed
    return static_cast<std::int64_t>(visible.size());
}

std::int64_t WindowMinimizer::forceTerminateAllApps()
{
    const auto apps = managedApps();
    for (const auto& app : apps)
        app->forceTerminate(); // a refusal does not stop the others
    return static_cast<std::int64_t>(apps.size());
}

bool WindowMinimizer::openApp(std::int32_t pid)
{
    const auto app = runningApplication(pid);
    return app && app->activate(activateAllWindows | activateIgnoringOtherApps);
}

bool WindowMinimizer::terminateApp(std::int32_t pid)
{
    const auto app = runningApplication(pid);
    return app && app->terminate();
}

bool WindowMinimizer::forceTerminateApp(std::int32_t pid)
{
    const auto app = runningApplication(pid);
    return app && app->forceTerminate();
}

// ---- Process memory accounting ---------------------------------------------------

std::vector<std::int32_t> WindowMinimizer::allPIDs()
{
    const int count = m_processTable.listAllPids(nullptr, 0);
    const int capacity = std::max(count, 0);
    if (capacity == 0)
        return {};
    if (capacity > std::numeric_limits<std::int32_t>::max() / static_cast<int>(sizeof(std::int32_t)))
        std::abort(); // a byte size beyond 32 bits is a programming error

    std::vector<std::int32_t> buffer(static_cast<std::size_t>(capacity));
    const int answer = m_processTable.listAllPids(buffer.data(), capacity * static_cast<int>(sizeof(std::int32_t)));
    if (answer <= 0)
        return {};

    const auto listed = std::min<std::size_t>(static_cast<std::size_t>(answer), buffer.size());
    std::vector<std::int32_t> pids;
    pids.reserve(listed);
    for (std::size_t i = 0; i < listed; ++i) {
        if (buffer[i] > 0)
            pids.push_back(buffer[i]);
    }
    return pids;
}

std::optional<QString> WindowMinimizer::processName(std::int32_t pid)
{
    std::array<char, 1024> buffer{};
    if (m_processTable.name(pid, buffer.data(), static_cast<std::uint32_t>(buffer.size())) <= 0)
        return std::nullopt;
    buffer.back() = '\0';
    // Invalid UTF-8 becomes the replacement character.
    return QString::fromUtf8(buffer.data());
}

std::optional<QString> WindowMinimizer::normalizedProcessName(const std::optional<QString>& name)
{
    if (!name)
        return std::nullopt;
    return name->trimmed().toLower();
}

std::optional<std::uint64_t> WindowMinimizer::memoryUsage(std::int32_t pid)
{
    RusageInfo usage;
    if (m_processTable.pidRusage(pid, usage) == 0 && usage.physFootprint != 0)
        return usage.physFootprint;
    // Only the resident-size fallback can yield 0.
    TaskInfo task;
    if (m_processTable.pidTaskInfo(pid, task) == kTaskInfoSize)
        return task.residentSize;
    return std::nullopt;
}

std::vector<ProcessMemoryRecord> WindowMinimizer::groupedProcessMemory()
{
    return withMemory(namedProcesses(), [](const ProcessMemoryRecord&) { return true; });
}

std::vector<ProcessMemoryRecord> WindowMinimizer::namedProcesses()
{
    const std::int32_t ownPid = m_workspace.currentProcessIdentifier();
    std::vector<ProcessMemoryRecord> records;
    for (std::int32_t pid : allPIDs()) {
        if (pid == ownPid)
            continue;
        const auto name = processName(pid);
        if (!name)
            continue; // also a process that vanished since the listing
        std::optional<QString> bundleIdentifier;
        if (const auto app = m_workspace.runningApplication(pid)) {
            if (auto identifier = app->bundleIdentifier())
                bundleIdentifier = QString::fromStdString(*identifier);
        }
        // The lower-cased fallback is computed only when normalizing gave nothing.
        auto normalized = normalizedProcessName(name);
        records.push_back(ProcessMemoryRecord{
            pid,
            normalized ? std::move(*normalized) : name->toLower(),
            std::move(bundleIdentifier),
            0,
        });
    }
    return records;
}

template <typename Counts>
std::vector<ProcessMemoryRecord> WindowMinimizer::withMemory(std::vector<ProcessMemoryRecord> processes, Counts counts)
{
    std::vector<ProcessMemoryRecord> records;
    for (auto& record : processes) {
        if (!counts(record))
            continue;
        const auto memory = memoryUsage(record.pid);
        if (!memory)
            continue; // a kernel thread, a zombie, or a process that vanished meanwhile
        record.memoryBytes = *memory;
        records.push_back(std::move(record));
    }
    return records;
}

WindowMinimizer::MemoryClaims::MemoryClaims(const std::vector<RunningApplicationRef>& apps)
{
    for (const auto& app : apps) {
        if (auto identifier = app->bundleIdentifier())
            m_bundles.insert(QString::fromStdString(*identifier).toLower());
        std::optional<QString> name;
        if (auto localized = app->localizedName())
            name = normalizedProcessName(QString::fromStdString(*localized));
        if (name)
            m_names.insert(*name);
        else
            m_pids.insert(app->processIdentifier());
    }
}

bool WindowMinimizer::MemoryClaims::mayClaim(const ProcessMemoryRecord& record) const
{
    if (!m_bundles.isEmpty() && record.bundleIdentifier && m_bundles.contains(record.bundleIdentifier->toLower()))
        return true;
    const QString& name = record.normalizedName;
    if (m_names.contains(name))
        return true;
    // "<app name> helper...": every place the suffix starts may end an app's name.
    static const QString helper = QStringLiteral(" helper");
    for (qsizetype at = name.indexOf(helper); at >= 0; at = name.indexOf(helper, at + 1)) {
        if (m_names.contains(name.left(at)))
            return true;
    }
    return m_pids.contains(record.pid);
}

std::vector<std::optional<QString>>
WindowMinimizer::lowerBundleIdentifiers(const std::vector<ProcessMemoryRecord>& processMemory)
{
    std::vector<std::optional<QString>> lower;
    lower.reserve(processMemory.size());
    for (const auto& record : processMemory)
        lower.push_back(record.bundleIdentifier ? std::optional<QString>(record.bundleIdentifier->toLower())
                                                : std::nullopt);
    return lower;
}

std::optional<std::uint64_t> WindowMinimizer::totalMemory(const RunningApplication& app,
                                                          const std::vector<ProcessMemoryRecord>& processMemory)
{
    return totalMemory(app, processMemory, lowerBundleIdentifiers(processMemory));
}

std::optional<std::uint64_t> WindowMinimizer::totalMemory(const RunningApplication& app,
                                                          const std::vector<ProcessMemoryRecord>& processMemory,
                                                          const std::vector<std::optional<QString>>& lowerBundles)
{
    std::optional<QString> bundle;
    if (auto identifier = app.bundleIdentifier())
        bundle = QString::fromStdString(*identifier).toLower();
    std::optional<QString> name;
    if (auto localized = app.localizedName())
        name = normalizedProcessName(QString::fromStdString(*localized));
    const QString helperPrefix = name ? *name + QStringLiteral(" helper") : QString();

    auto belongs = [&](const ProcessMemoryRecord& record, const std::optional<QString>& recordBundle) {
        // A bundle mismatch does not exclude: the name rule may still claim the process.
        if (bundle && recordBundle && *recordBundle == *bundle)
            return true;
        if (name)
            return record.normalizedName == *name || record.normalizedName.startsWith(helperPrefix);
        return record.pid == app.processIdentifier();
    };

    bool matched = false;
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < processMemory.size(); ++i) {
        const auto& record = processMemory[i];
        if (belongs(record, lowerBundles[i])) {
            matched = true;
            sum = checkedAdd<std::uint64_t>(sum, record.memoryBytes);
        }
    }
    if (!matched)
        return memoryUsage(app.processIdentifier());
    if (sum == 0)
        return std::nullopt;
    return sum;
}

} // namespace stowly
