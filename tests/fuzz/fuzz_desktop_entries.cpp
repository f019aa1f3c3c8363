// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// A desktop entry with any bytes, as a user's applications folder may hold one: read the
// way the workspace reads it, then looked up the way windows look it up.

#include "DesktopEntries.h"
#include "FuzzCheck.h"
#include "TextUtil.h"

#include <cstdlib>
#include <fstream>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

using namespace stowly::linuxdesktop;

namespace {

std::string g_file;

void prepare()
{
    char pattern[] = "/tmp/stowly-fuzz-entries-XXXXXX";
    const char* root = mkdtemp(pattern);
    if (root == nullptr)
        std::abort();
    const std::string apps = std::string(root) + "/applications";
    mkdir(apps.c_str(), 0700);
    setenv("XDG_DATA_HOME", root, 1);
    setenv("XDG_DATA_DIRS", "/nonexistent", 1);
    setenv("LANG", "de_DE.UTF-8", 1);
    g_file = apps + "/org.example.Fuzzed.desktop";
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    prepare();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    {
        std::ofstream out(g_file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    DesktopEntries entries; // reads the folder
    const std::optional<std::string> id = std::string("org.example.Fuzzed");
    const std::optional<std::string> wmClass = std::string("Fuzzed");
    const DesktopEntries::Hints hints{&id, nullptr, &wmClass, nullptr};
    if (const DesktopEntries::Entry* entry = entries.match(hints)) {
        STOWLY_FUZZ_CHECK(entry->id == "org.example.Fuzzed");
        STOWLY_FUZZ_CHECK(!entry->name.empty());
        // Names reach the panel as UTF-8 text.
        STOWLY_FUZZ_CHECK(isValidUtf8(entry->name));
        STOWLY_FUZZ_CHECK(entry->name.find('\n') == std::string::npos);
    }
    return 0;
}
