// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "AppIcon.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace stowly {

// NSApplicationActivationPolicy values.
enum class ActivationPolicy : int {
    regular = 0,
    accessory = 1,
    prohibited = 2,
};

// NSApplicationActivationOptions bits.
enum ActivationOption : unsigned {
    activateAllWindows = 1u << 0,
    activateIgnoringOtherApps = 1u << 1,
};

// One running application as the workspace reports it (NSRunningApplication).
// Property reads describe the app as of the workspace snapshot it came from,
// except isTerminated(), which asks the system afresh. Requests go to the live app.
class RunningApplication {
public:
    virtual ~RunningApplication() = default;

    virtual std::int32_t processIdentifier() const = 0;
    virtual bool isTerminated() const = 0;
    virtual ActivationPolicy activationPolicy() const = 0;
    virtual std::optional<std::string> localizedName() const = 0; // UTF-8
    virtual std::optional<std::string> bundleIdentifier() const = 0;
    virtual AppIconRef icon() const = 0; // null when none
    virtual bool isHidden() const = 0;
    virtual bool isActive() const = 0;

    // Each answers whether the request was accepted / sent.
    virtual bool hide() = 0;
    virtual bool terminate() = 0;
    virtual bool forceTerminate() = 0;
    virtual bool activate(unsigned options) = 0; // ActivationOption bits
};

using RunningApplicationRef = std::shared_ptr<RunningApplication>;

// NSWorkspace / NSRunningApplication / NSProcessInfo.
class Workspace {
public:
    virtual ~Workspace() = default;

    // NSWorkspace.shared.runningApplications, in the platform's order.
    virtual std::vector<RunningApplicationRef> runningApplications() = 0;

    // NSRunningApplication(processIdentifier:): the application of that process,
    // or null when the process is no application.
    virtual RunningApplicationRef runningApplication(std::int32_t processIdentifier) = 0;

    // NSProcessInfo.processInfo.processIdentifier.
    virtual std::int32_t currentProcessIdentifier() const = 0;
};

} // namespace stowly
