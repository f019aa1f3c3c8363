// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "DetachedProcess.h"

#include "OpenFileLimit.h"

#include <QProcess>

namespace stowly::linuxdesktop {

bool startDetachedProcess(const QString& program, const QStringList& arguments, qint64* pid)
{
    const openfilelimit::ForChildren limit;
    return QProcess::startDetached(program, arguments, QString(), pid);
}

} // namespace stowly::linuxdesktop
