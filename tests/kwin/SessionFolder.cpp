// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "SessionFolder.h"

#include "TestBed.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <climits>
#include <cstdio>

namespace stowly::kwintest {

SessionFolder::SessionFolder(const std::string& parentDir, const std::string& prefix)
{
    char pattern[PATH_MAX];
    std::snprintf(pattern, sizeof pattern, "%s/%s-XXXXXX", parentDir.c_str(), prefix.c_str());
    const char* made = mkdtemp(pattern);
    if (made == nullptr)
        return;
    const std::string runtime = std::string(made) + "/runtime";
    if (mkdir(runtime.c_str(), 0700) != 0) {
        testbed::run("rm -rf '" + std::string(made) + "'");
        return;
    }
    m_root = made;
    m_runtime = runtime;
}

SessionFolder::~SessionFolder()
{
    if (ok() && !m_keep && std::getenv("STOWLY_KEEP_TEST_FILES") == nullptr)
        testbed::run("rm -rf '" + m_root + "'");
}

} // namespace stowly::kwintest
