// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Scriptable stand-ins for every platform interface, so that each rule of the logic
// can be driven through exact answers, failures in the middle of a walk included.

#include "platform/Platform.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace stowly::fakes {

// ---- Workspace -------------------------------------------------------------------

class FakeRunningApplication : public RunningApplication {
public:
    explicit FakeRunningApplication(std::int32_t pid) : pid(pid) {}

    // Scripted state.
    std::int32_t pid;
    bool terminated = false;
    ActivationPolicy policy = ActivationPolicy::regular;
    std::optional<std::string> name;
    std::optional<std::string> bundleId;
    AppIconRef iconImage;
    bool hidden = false;
    bool active = false;
    bool hideAnswer = true;
    bool terminateAnswer = true;
    bool forceTerminateAnswer = true;
    bool activateAnswer = true;

    // What was asked of it, shared with the workspace's request log.
    std::vector<std::string>* requestLog = nullptr;
    int hideCalls = 0;
    int terminateCalls = 0;
    int forceTerminateCalls = 0;
    std::vector<unsigned> activateCalls;

    std::int32_t processIdentifier() const override { return pid; }
    bool isTerminated() const override { return terminated; }
    ActivationPolicy activationPolicy() const override { return policy; }
    std::optional<std::string> localizedName() const override { return name; }
    std::optional<std::string> bundleIdentifier() const override { return bundleId; }
    AppIconRef icon() const override { return iconImage; }
    bool isHidden() const override { return hidden; }
    bool isActive() const override { return active; }
    bool hide() override;
    bool terminate() override;
    bool forceTerminate() override;
    bool activate(unsigned options) override;

private:
    void log(const std::string& request);
};

using FakeAppRef = std::shared_ptr<FakeRunningApplication>;

class FakeWorkspace : public Workspace {
public:
    std::int32_t ownPid = 4242;
    std::vector<FakeAppRef> apps;
    // Processes that belong to an app without owning it (helpers): pid -> app.
    std::map<std::int32_t, FakeAppRef> applicationOfProcess;
    std::vector<std::string> requestLog; // "hide:<pid>", "forceTerminate:<pid>", ...
    int runningApplicationsCalls = 0;

    FakeAppRef addApp(std::int32_t pid, std::optional<std::string> name,
                      ActivationPolicy policy = ActivationPolicy::regular);

    std::vector<RunningApplicationRef> runningApplications() override;
    RunningApplicationRef runningApplication(std::int32_t pid) override;
    std::int32_t currentProcessIdentifier() const override { return ownPid; }
};

// ---- Accessibility ---------------------------------------------------------------

struct FakeAttribute {
    AXError code = kAXErrorSuccess;
    AXValue value = AXAbsent{};
};

class FakeElement : public AXElement {
public:
    explicit FakeElement(std::string label) : label(std::move(label)) {}
    std::string label;
    std::map<std::string, FakeAttribute> attributes;
    std::map<std::string, AXError> setAnswers;    // attribute -> code (default success)
    std::map<std::string, AXError> actionAnswers; // action -> code (default success)
};
using FakeElementRef = std::shared_ptr<FakeElement>;

class FakeAccessibility : public Accessibility {
public:
    // Application elements by pid; a pid without one gets an element with no attributes.
    std::map<std::int32_t, FakeElementRef> applications;
    std::vector<std::string> log; // "set:<label>:AXMinimized", "press:<label>", ...
    int createdApplications = 0;

    // A standard window (role AXWindow, subrole AXStandardWindow, not minimized,
    // with a close button) added to the app of `pid`.
    FakeElementRef addWindow(std::int32_t pid, const std::string& label);
    FakeElementRef applicationElement(std::int32_t pid);

    AXElementRef createApplication(std::int32_t pid) override;
    AXError copyAttributeValue(const AXElementRef& element, const std::string& attribute, AXValue& value) override;
    AXError setAttributeValue(const AXElementRef& element, const std::string& attribute, const AXValue& value) override;
    AXError performAction(const AXElementRef& element, const std::string& action) override;
    // Logged as "batch:begin" and "batch:end", in line with the requests between them.
    void beginRequestBatch() override;
    void endRequestBatch() override;
};

class FakeTrust : public AccessibilityTrust {
public:
    bool trusted = false;
    std::vector<bool> prompts; // the prompt flag of every query
    bool isProcessTrusted(bool prompt) override
    {
        prompts.push_back(prompt);
        return trusted;
    }
};

// ---- Process table ---------------------------------------------------------------

struct FakeProcess {
    std::optional<std::string> name; // nullopt: proc_name fails
    int rusageResult = 0;            // 0: success
    std::uint64_t footprint = 0;
    int taskInfoResult = kTaskInfoSize; // bytes written
    std::uint64_t resident = 0;
};

class FakeProcessTable : public ProcessTable {
public:
    std::map<std::int32_t, FakeProcess> processes;
    std::vector<std::int32_t> order;           // listing order; empty: by pid
    std::optional<int> countAnswer;            // overrides the no-buffer count
    std::optional<int> listAnswer;             // overrides the filled count
    std::vector<std::int32_t> extraListedPids; // listed but unknown (e.g. 0)
    int listAllPidsCalls = 0;                  // both forms: count and fill
    std::vector<std::int32_t> memoryReads;     // pids asked for their usage, in order

    FakeProcess& add(std::int32_t pid, std::optional<std::string> name, std::uint64_t footprint);

    int listAllPids(std::int32_t* buffer, int bufferSize) override;
    int name(std::int32_t pid, char* buffer, std::uint32_t bufferSize) override;
    int pidRusage(std::int32_t pid, RusageInfo& info) override;
    int pidTaskInfo(std::int32_t pid, TaskInfo& info) override;

private:
    std::vector<std::int32_t> listing() const;
};

// ---- Login items, URLs, preferences ----------------------------------------------

class FakeLoginItems : public LoginItemService {
public:
    LoginItemStatus currentStatus = LoginItemStatus::notRegistered;
    std::optional<std::string> registerError; // set: register fails with this text
    std::optional<std::string> unregisterError;
    std::optional<LoginItemStatus> statusAfterRegister; // default: enabled
    int statusQueries = 0;
    int registerCalls = 0;
    int unregisterCalls = 0;

    LoginItemStatus status() override
    {
        ++statusQueries;
        return currentStatus;
    }
    std::optional<std::string> registerMainApp() override;
    std::optional<std::string> unregisterMainApp() override;
};

class FakeUrlOpener : public UrlOpener {
public:
    std::vector<std::string> opened;
    bool answer = true;
    bool openUrl(const std::string& url) override
    {
        opened.push_back(url);
        return answer;
    }
};

class FakePreferenceStore : public PreferenceStore {
public:
    std::map<std::string, std::string> values;
    int writes = 0;
    std::optional<std::string> string(const std::string& key) const override;
    void setString(const std::string& key, const std::string& value) override
    {
        ++writes;
        values[key] = value;
    }
};

// Like the macOS backend: opens its location through the URL opener.
class FakeAccessSettings : public AccessSettings {
public:
    explicit FakeAccessSettings(UrlOpener& urlOpener) : urlOpener(urlOpener) {}
    UrlOpener& urlOpener;
    std::optional<std::string> settingsName = std::string("System Settings"); // nullopt: nothing to open
    std::string location = "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
    int nameQueries = 0;
    std::optional<std::string> name() override
    {
        ++nameQueries;
        return settingsName;
    }
    bool open() override { return settingsName && urlOpener.openUrl(location); }
    std::optional<std::string> outOfReach; // what limitation() answers
    std::optional<std::string> limitation() override { return outOfReach; }
};

// ---- All of them -----------------------------------------------------------------

struct FakePlatform {
    FakeWorkspace workspace;
    FakeAccessibility accessibility;
    FakeTrust trust;
    FakeProcessTable processTable;
    FakeLoginItems loginItems;
    FakeUrlOpener urlOpener;
    FakePreferenceStore preferences;
    FakeAccessSettings accessSettings{urlOpener};

    Platform platform()
    {
        return Platform{workspace,  accessibility, trust,       processTable,
                        loginItems, urlOpener,     preferences, accessSettings};
    }
};

} // namespace stowly::fakes
