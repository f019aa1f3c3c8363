// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Platform.h"

#include <memory>

namespace stowly::bench {

// The Linux backend as the program builds it, behind the one thing the logic needs.
class BenchBackend {
public:
    virtual ~BenchBackend() = default;
    virtual Platform& platform() = 0;
};

std::unique_ptr<BenchBackend> makeBenchBackend();

} // namespace stowly::bench
