// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: code that is not Objective-C++ may include this header.

#include "platform/Workspace.h"

namespace stowly::macos {

// NSWorkspace, NSRunningApplication and NSProcessInfo. Main thread only, as AppKit
// updates application properties there.
class MacWorkspace final : public Workspace {
public:
    std::vector<RunningApplicationRef> runningApplications() override;
    RunningApplicationRef runningApplication(std::int32_t processIdentifier) override;
    std::int32_t currentProcessIdentifier() const override;
};

} // namespace stowly::macos
