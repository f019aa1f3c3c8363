// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "MacWorkspace.h"

#include "ActivationPolicyCode.h"
#include "MacImageRendering.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace stowly::macos {
namespace {

static_assert(NSApplicationActivationPolicyRegular == static_cast<long>(ActivationPolicy::regular));
static_assert(NSApplicationActivationPolicyAccessory == static_cast<long>(ActivationPolicy::accessory));
static_assert(NSApplicationActivationPolicyProhibited == static_cast<long>(ActivationPolicy::prohibited));

std::optional<std::string> toOptionalString(NSString* text)
{
    if (text == nil)
        return std::nullopt;
    const char* utf8 = text.UTF8String;
    return utf8 != nullptr ? std::optional<std::string>(utf8) : std::nullopt;
}

// One NSRunningApplication. AppKit refreshes its properties on the main run loop, so
// within one synchronous refresh they describe the app as the workspace last saw it.
class MacRunningApplication final : public RunningApplication {
public:
    explicit MacRunningApplication(NSRunningApplication* application) : m_application(application) {}

    std::int32_t processIdentifier() const override { return m_application.processIdentifier; }
    bool isTerminated() const override { return m_application.terminated; }

    ActivationPolicy activationPolicy() const override
    {
        return activationPolicyFromCode(m_application.activationPolicy);
    }

    std::optional<std::string> localizedName() const override { return toOptionalString(m_application.localizedName); }

    std::optional<std::string> bundleIdentifier() const override
    {
        return toOptionalString(m_application.bundleIdentifier);
    }

    // Drawn once per handle: the panel reads it every refresh, and a handle lives
    // only as long as one snapshot.
    AppIconRef icon() const override
    {
        if (!m_iconRendered) {
            m_icon = renderImage(m_application.icon, appIconPixelSize());
            m_iconRendered = true;
        }
        return m_icon;
    }

    bool isHidden() const override { return m_application.hidden; }
    bool isActive() const override { return m_application.active; }

    bool hide() override { return [m_application hide]; }
    bool terminate() override { return [m_application terminate]; }
    bool forceTerminate() override { return [m_application forceTerminate]; }

    bool activate(unsigned options) override
    {
        // The bits are AppKit's own (all windows 1, ignoring other apps 2), passed as given.
        return [m_application activateWithOptions:static_cast<NSApplicationActivationOptions>(options)];
    }

private:
    NSRunningApplication* m_application; // strong (ARC)
    mutable AppIconRef m_icon;
    mutable bool m_iconRendered = false;
};

} // namespace

std::vector<RunningApplicationRef> MacWorkspace::runningApplications()
{
    std::vector<RunningApplicationRef> result;
    @autoreleasepool {
        NSArray<NSRunningApplication*>* applications = NSWorkspace.sharedWorkspace.runningApplications;
        result.reserve(applications.count);
        for (NSRunningApplication* application in applications)
            result.push_back(std::make_shared<MacRunningApplication>(application));
    }
    return result;
}

RunningApplicationRef MacWorkspace::runningApplication(std::int32_t processIdentifier)
{
    NSRunningApplication* application =
        [NSRunningApplication runningApplicationWithProcessIdentifier:processIdentifier];
    if (application == nil)
        return nullptr;
    return std::make_shared<MacRunningApplication>(application);
}

std::int32_t MacWorkspace::currentProcessIdentifier() const
{
    return NSProcessInfo.processInfo.processIdentifier;
}

} // namespace stowly::macos
