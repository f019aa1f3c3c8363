// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// KWin offers its window-management interface only to a program whose desktop entry names
// its executable and lists the interface. Asking for access on KWin means writing that entry
// for the running executable in the user's applications folder.
#pragma once

#include <optional>
#include <string>

namespace stowly::kwin {

class KWinAccessGrant {
public:
    // Empty arguments: /proc/self/exe and $XDG_DATA_HOME/applications (or ~/.local/share/...).
    explicit KWinAccessGrant(std::string executable = {}, const std::string& applicationsDir = {});

    // Our entry names this executable already.
    bool isWritten() const;
    // Writes (or rewrites) the entry; the system's error text on failure.
    std::optional<std::string> write() const;

    const std::string& entryPath() const { return m_entryPath; }
    // The entry's text, with Exec quoted as desktop entries require.
    std::string entryText() const;

private:
    std::string m_executable;
    std::string m_entryPath;
};

// The program path as KWin reads it back from Exec: KWin splits the value with Qt's
// QProcess::splitCommand, where double quotes group words and three of them stand for one
// literal quote (not the backslash escapes of the desktop-entry rules, which KWin does not
// apply). Backslashes are doubled for the string value itself. This entry is only ever read
// by KWin, never launched.
std::string kwinExecArgument(const std::string& path);

} // namespace stowly::kwin
