// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The windows Stowly hid, by KWin uuid. KWin has only "minimized"; this record is what
// tells a hidden app from a minimized one. It lives in the session's runtime folder, so a
// restart of Stowly still knows what it hid, and a new login starts clean.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace stowly::kwin {

class HiddenWindowRecord {
public:
    // Empty path: $XDG_RUNTIME_DIR/stowly/hidden-windows (nothing is kept without one).
    explicit HiddenWindowRecord(std::string path = {});

    bool contains(const std::string& uuid) const { return m_uuids.count(uuid) != 0; }
    void add(const std::vector<std::string>& uuids);
    void remove(const std::vector<std::string>& uuids);
    // Forgets windows that no longer exist.
    void keepOnly(const std::vector<std::string>& existing);
    const std::string& path() const { return m_path; }

private:
    void save() const;

    std::string m_path;
    std::set<std::string> m_uuids;
};

} // namespace stowly::kwin
