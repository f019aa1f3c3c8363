// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// /proc/PID/status and /proc/PID/stat texts as a process may shape them (its name is
// free text, and a read can catch a file cut short while the process exits).

#include "FuzzCheck.h"
#include "ProcFs.h"
#include "ProcStat.h"

#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const stowly::linuxdesktop::ProcStatus status = stowly::linuxdesktop::parseProcStatus(text);
    STOWLY_FUZZ_CHECK(status.readable);
    STOWLY_FUZZ_CHECK(status.name.size() <= 15);
    STOWLY_FUZZ_CHECK(status.ppid >= -1);
    if (const auto stat = stowly::linuxdesktop::parseProcStat(text)) {
        STOWLY_FUZZ_CHECK(stat->pid > 0);
        // Whatever came after the last ')' was read, never the name.
        STOWLY_FUZZ_CHECK(text.rfind(')') != std::string_view::npos);
    }
    // A text cut anywhere parses as well or not at all, but never crashes.
    for (std::size_t cut = 0; cut < size; cut += 1 + size / 8)
        (void)stowly::linuxdesktop::parseProcStat(text.substr(0, cut));
    return 0;
}
