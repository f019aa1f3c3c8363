// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// The folder a private test session keeps its files in: made fresh under a parent folder,
// with a private runtime folder inside (mode 0700, as XDG asks of XDG_RUNTIME_DIR), and
// removed with everything in it when the session ends.

#include <string>

namespace stowly::kwintest {

class SessionFolder {
public:
    // Makes "<parentDir>/<prefix>-XXXXXX" and its "runtime" folder; ok() tells whether it could.
    SessionFolder(const std::string& parentDir, const std::string& prefix);
    // Removes the folder unless keep() was called or STOWLY_KEEP_TEST_FILES is set.
    ~SessionFolder();
    SessionFolder(const SessionFolder&) = delete;
    SessionFolder& operator=(const SessionFolder&) = delete;

    bool ok() const { return !m_root.empty(); }
    const std::string& root() const { return m_root; }
    const std::string& runtime() const { return m_runtime; }
    // Leaves the folder for a look afterwards (a session that failed to start).
    void keep() { m_keep = true; }

private:
    std::string m_root;
    std::string m_runtime;
    bool m_keep = false;
};

} // namespace stowly::kwintest
