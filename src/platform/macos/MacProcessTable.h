// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Plain C++ on purpose: code that is not Objective-C++ may include this header.

#include "platform/ProcessTable.h"

namespace stowly::macos {

// libproc, answering with its own return conventions unchanged.
class MacProcessTable final : public ProcessTable {
public:
    int listAllPids(std::int32_t* buffer, int bufferSize) override;
    int name(std::int32_t pid, char* buffer, std::uint32_t bufferSize) override;
    int pidRusage(std::int32_t pid, RusageInfo& info) override;
    int pidTaskInfo(std::int32_t pid, TaskInfo& info) override;
};

} // namespace stowly::macos
