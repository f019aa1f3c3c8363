// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "FakePlatform.h"

#include <algorithm>
#include <cstring>

namespace stowly::fakes {

// ---- Workspace -------------------------------------------------------------------

void FakeRunningApplication::log(const std::string& request)
{
    if (requestLog)
        requestLog->push_back(request + ":" + std::to_string(pid));
}

bool FakeRunningApplication::hide()
{
    ++hideCalls;
    log("hide");
    return hideAnswer;
}

bool FakeRunningApplication::terminate()
{
    ++terminateCalls;
    log("terminate");
    return terminateAnswer;
}

bool FakeRunningApplication::forceTerminate()
{
    ++forceTerminateCalls;
    log("forceTerminate");
    return forceTerminateAnswer;
}

bool FakeRunningApplication::activate(unsigned options)
{
    activateCalls.push_back(options);
    log("activate");
    return activateAnswer;
}

FakeAppRef FakeWorkspace::addApp(std::int32_t pid, std::optional<std::string> name, ActivationPolicy policy)
{
    auto app = std::make_shared<FakeRunningApplication>(pid);
    app->name = std::move(name);
    app->policy = policy;
    app->requestLog = &requestLog;
    apps.push_back(app);
    return app;
}

std::vector<RunningApplicationRef> FakeWorkspace::runningApplications()
{
    ++runningApplicationsCalls;
    return {apps.begin(), apps.end()};
}

RunningApplicationRef FakeWorkspace::runningApplication(std::int32_t pid)
{
    for (const auto& app : apps) {
        if (app->pid == pid)
            return app;
    }
    if (auto found = applicationOfProcess.find(pid); found != applicationOfProcess.end())
        return found->second;
    return nullptr;
}

// ---- Accessibility ---------------------------------------------------------------

FakeElementRef FakeAccessibility::applicationElement(std::int32_t pid)
{
    auto& element = applications[pid];
    if (!element) {
        element = std::make_shared<FakeElement>("app" + std::to_string(pid));
        element->attributes[kAXWindowsAttribute] = {kAXErrorSuccess, AXElementList{}};
    }
    return element;
}

FakeElementRef FakeAccessibility::addWindow(std::int32_t pid, const std::string& label)
{
    auto window = std::make_shared<FakeElement>(label);
    window->attributes[kAXRoleAttribute] = {kAXErrorSuccess, std::string(kAXWindowRole)};
    window->attributes[kAXSubroleAttribute] = {kAXErrorSuccess, std::string(kAXStandardWindowSubrole)};
    window->attributes[kAXMinimizedAttribute] = {kAXErrorSuccess, false};
    auto button = std::make_shared<FakeElement>(label + ".close");
    window->attributes[kAXCloseButtonAttribute] = {kAXErrorSuccess, AXElementRef(button)};

    auto app = applicationElement(pid);
    auto& windows = app->attributes[kAXWindowsAttribute];
    if (auto* list = std::get_if<AXElementList>(&windows.value))
        list->push_back(window);
    return window;
}

AXElementRef FakeAccessibility::createApplication(std::int32_t pid)
{
    ++createdApplications;
    if (auto found = applications.find(pid); found != applications.end())
        return found->second;
    return std::make_shared<FakeElement>("app" + std::to_string(pid));
}

AXError FakeAccessibility::copyAttributeValue(const AXElementRef& element, const std::string& attribute, AXValue& value)
{
    auto* fake = dynamic_cast<FakeElement*>(element.get());
    if (!fake)
        return kAXErrorIllegalArgument;
    log.push_back("copy:" + fake->label + ":" + attribute);
    auto found = fake->attributes.find(attribute);
    if (found == fake->attributes.end())
        return kAXErrorAttributeUnsupported;
    if (found->second.code == kAXErrorSuccess)
        value = found->second.value;
    return found->second.code;
}

AXError FakeAccessibility::setAttributeValue(const AXElementRef& element, const std::string& attribute,
                                             const AXValue& value)
{
    auto* fake = dynamic_cast<FakeElement*>(element.get());
    if (!fake)
        return kAXErrorIllegalArgument;
    log.push_back("set:" + fake->label + ":" + attribute);
    if (auto found = fake->setAnswers.find(attribute); found != fake->setAnswers.end()) {
        if (found->second != kAXErrorSuccess)
            return found->second;
    }
    fake->attributes[attribute] = {kAXErrorSuccess, value};
    return kAXErrorSuccess;
}

AXError FakeAccessibility::performAction(const AXElementRef& element, const std::string& action)
{
    auto* fake = dynamic_cast<FakeElement*>(element.get());
    if (!fake)
        return kAXErrorIllegalArgument;
    log.push_back("perform:" + fake->label + ":" + action);
    if (auto found = fake->actionAnswers.find(action); found != fake->actionAnswers.end())
        return found->second;
    return kAXErrorSuccess;
}

void FakeAccessibility::beginRequestBatch()
{
    log.emplace_back("batch:begin");
}

void FakeAccessibility::endRequestBatch()
{
    log.emplace_back("batch:end");
}

// ---- Process table ---------------------------------------------------------------

FakeProcess& FakeProcessTable::add(std::int32_t pid, std::optional<std::string> name, std::uint64_t footprint)
{
    auto& process = processes[pid];
    process.name = std::move(name);
    process.footprint = footprint;
    process.resident = footprint;
    return process;
}

std::vector<std::int32_t> FakeProcessTable::listing() const
{
    std::vector<std::int32_t> pids = order;
    if (pids.empty()) {
        for (const auto& [pid, process] : processes)
            pids.push_back(pid);
    }
    pids.insert(pids.end(), extraListedPids.begin(), extraListedPids.end());
    return pids;
}

int FakeProcessTable::listAllPids(std::int32_t* buffer, int bufferSize)
{
    ++listAllPidsCalls;
    const auto pids = listing();
    if (!buffer)
        return countAnswer.value_or(static_cast<int>(pids.size()));
    if (listAnswer && *listAnswer <= 0)
        return *listAnswer;
    const auto capacity = static_cast<std::size_t>(bufferSize) / sizeof(std::int32_t);
    const auto written = std::min(capacity, pids.size());
    std::copy_n(pids.begin(), written, buffer);
    return listAnswer.value_or(static_cast<int>(written));
}

int FakeProcessTable::name(std::int32_t pid, char* buffer, std::uint32_t bufferSize)
{
    auto found = processes.find(pid);
    if (found == processes.end() || !found->second.name || bufferSize == 0)
        return 0;
    const auto& name = *found->second.name;
    const auto length = std::min<std::size_t>(name.size(), bufferSize - 1);
    std::memcpy(buffer, name.data(), length);
    buffer[length] = '\0';
    return static_cast<int>(length);
}

int FakeProcessTable::pidRusage(std::int32_t pid, RusageInfo& info)
{
    memoryReads.push_back(pid);
    auto found = processes.find(pid);
    if (found == processes.end())
        return -1;
    if (found->second.rusageResult == 0)
        info.physFootprint = found->second.footprint;
    return found->second.rusageResult;
}

int FakeProcessTable::pidTaskInfo(std::int32_t pid, TaskInfo& info)
{
    auto found = processes.find(pid);
    if (found == processes.end())
        return 0;
    if (found->second.taskInfoResult == kTaskInfoSize)
        info.residentSize = found->second.resident;
    return found->second.taskInfoResult;
}

// ---- Login items, preferences ----------------------------------------------------

std::optional<std::string> FakeLoginItems::registerMainApp()
{
    ++registerCalls;
    if (registerError)
        return registerError;
    currentStatus = statusAfterRegister.value_or(LoginItemStatus::enabled);
    return std::nullopt;
}

std::optional<std::string> FakeLoginItems::unregisterMainApp()
{
    ++unregisterCalls;
    if (unregisterError)
        return unregisterError;
    currentStatus = LoginItemStatus::notRegistered;
    return std::nullopt;
}

std::optional<std::string> FakePreferenceStore::string(const std::string& key) const
{
    if (auto found = values.find(key); found != values.end())
        return found->second;
    return std::nullopt;
}

} // namespace stowly::fakes
