// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/AccessSettings.h"

#include <QString>

#include <functional>

namespace stowly::kwin {

// On Plasma, KDE's System Settings shows which programs KWin lets see other windows (through
// their desktop entries); it is offered only when installed.
class PlasmaSystemSettings : public AccessSettings {
public:
    // `findExecutable` answers a full path, or "" when not installed (tests pass their own).
    explicit PlasmaSystemSettings(std::function<QString(const QString&)> findExecutable = {});

    std::optional<std::string> name() override;
    bool open() override;

private:
    QString executable() const;

    std::function<QString(const QString&)> m_findExecutable;
};

} // namespace stowly::kwin
