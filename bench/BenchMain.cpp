// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Google Benchmark entry with a Qt core application around it (the model's timer needs one;
// the event loop never runs while a case is timed, so no tick can land inside a measurement).
//
// Every case runs one operation per repetition and reports it in manual time, so that the
// per-repetition figures are single operations, comparable with the floors' single runs.

#include "BenchOptions.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

bool takeFlag(const char* arg, const char* name, std::string& value)
{
    const std::size_t length = std::strlen(name);
    if (std::strncmp(arg, name, length) != 0 || arg[length] != '=')
        return false;
    value = arg + length + 1;
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);

    stowly::bench::BenchOptions options;
    for (int i = 1; i < argc; ++i) {
        std::string value;
        if (takeFlag(argv[i], "--fast_reps", value))
            options.fastRepetitions = std::atoi(value.c_str());
        else if (takeFlag(argv[i], "--window_reps", value))
            options.windowRepetitions = std::atoi(value.c_str());
        else if (takeFlag(argv[i], "--command_reps", value))
            options.commandRepetitions = std::atoi(value.c_str());
        else if (takeFlag(argv[i], "--target_class", value))
            options.targetClass = value;
        else if (takeFlag(argv[i], "--targets", value))
            options.targetCount = std::atoi(value.c_str());
        else {
            std::fprintf(stderr, "stowly_bench: unknown argument %s\n", argv[i]);
            return 2;
        }
    }

    stowly::bench::registerCommandBenchmarks(options);
#ifdef STOWLY_BENCH_HAVE_BACKEND
    stowly::bench::registerBackendBenchmarks(options);
#endif
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
