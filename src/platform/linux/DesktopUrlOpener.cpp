// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "DesktopUrlOpener.h"

#include "OpenFileLimit.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>

namespace stowly::linuxdesktop {

bool DesktopUrlOpener::openUrl(const std::string& url)
{
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr)
        return false;
    const QUrl parsed(QString::fromStdString(url));
    if (!parsed.isValid())
        return false;
    // Outside a sandbox the handler (xdg-open, or $BROWSER) is started within this call.
    const openfilelimit::ForChildren limit;
    return QDesktopServices::openUrl(parsed);
}

} // namespace stowly::linuxdesktop
