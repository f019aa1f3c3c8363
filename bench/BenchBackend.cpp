// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "BenchBackend.h"

#include "X11Platform.h"

namespace stowly::bench {

namespace {

class LinuxBenchBackend : public BenchBackend {
public:
    Platform& platform() override { return m_linux.platform(); }

private:
    x11::X11Platform m_linux;
};

} // namespace

std::unique_ptr<BenchBackend> makeBenchBackend()
{
    return std::make_unique<LinuxBenchBackend>();
}

} // namespace stowly::bench
