// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Other programs that answer part of the same question as Stowly's refresh, timed whole
// (fork, exec, run, exit) exactly as a user would run them once.

#include "BenchOptions.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

namespace stowly::bench {

namespace {

// Runs argv with output discarded; answers its exit status, or -1 when it could not run.
int runQuietly(const std::vector<std::string>& args)
{
    std::vector<char*> argv;
    for (const auto& arg : args)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child < 0)
        return -1;
    if (child == 0) {
        const int devNull = open("/dev/null", O_WRONLY);
        if (devNull >= 0) {
            dup2(devNull, STDOUT_FILENO);
            dup2(devNull, STDERR_FILENO);
        }
        execvp(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void timeCommand(benchmark::State& state, const std::vector<std::string>& args)
{
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        const int status = runQuietly(args);
        const auto end = std::chrono::steady_clock::now();
        if (status != 0) {
            state.SkipWithError((args[0] + " failed").c_str());
            break;
        }
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
    }
}

} // namespace

void registerCommandBenchmarks(const BenchOptions& options)
{
    const std::vector<std::pair<const char*, std::vector<std::string>>> commands = {
        {"command/ps", {"ps", "-eo", "pid,rss,comm"}},
        {"command/smem", {"smem"}},
    };
    for (const auto& [name, args] : commands) {
        benchmark::RegisterBenchmark(name, [args = args](benchmark::State& state) { timeCommand(state, args); })
            ->UseManualTime()
            ->Iterations(1)
            ->Repetitions(options.commandRepetitions)
            ->Unit(benchmark::kMillisecond);
    }
}

} // namespace stowly::bench
