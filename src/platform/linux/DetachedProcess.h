// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QStringList>

namespace stowly::linuxdesktop {

// Starts a program that outlives Stowly, as QProcess::startDetached does, but with the
// limit on open descriptors Stowly itself was started with (see OpenFileLimit.h). Every
// program Stowly starts on Linux goes through here, except URL handlers (DesktopUrlOpener
// does the same for them). pid, when given, gets the started program's pid.
bool startDetachedProcess(const QString& program, const QStringList& arguments, qint64* pid = nullptr);

} // namespace stowly::linuxdesktop
