// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace stowly::bench {

// What scripts/bench tells the benchmark program beyond Google Benchmark's own flags.
struct BenchOptions {
    int fastRepetitions = 20;          // cases of a few milliseconds
    int windowRepetitions = 10;        // cases that wait for the window manager
    int commandRepetitions = 5;        // other programs, run whole
    std::string targetClass = "xterm"; // WM_CLASS of the windows a bulk action must reach
    int targetCount = 40;              // how many of them the test bed opened
};

void registerCommandBenchmarks(const BenchOptions& options);
void registerBackendBenchmarks(const BenchOptions& options);

} // namespace stowly::bench
