// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "FreedesktopApplication.h"

#include <QDBusError>

namespace stowly {

FreedesktopApplication::FreedesktopApplication(QObject* parent) : QObject(parent) {}

QString FreedesktopApplication::objectPathFor(const QString& busName)
{
    QString path = QLatin1Char('/') + busName;
    path.replace(QLatin1Char('.'), QLatin1Char('/'));
    // Object path elements allow [A-Za-z0-9_] only; a "-" in a bus name becomes "_".
    path.replace(QLatin1Char('-'), QLatin1Char('_'));
    return path;
}

void FreedesktopApplication::Activate(const QVariantMap& platformData)
{
    Q_UNUSED(platformData)
    emit activationRequested();
}

void FreedesktopApplication::Open(const QStringList& uris, const QVariantMap& platformData)
{
    Q_UNUSED(uris)
    Q_UNUSED(platformData)
    if (calledFromDBus())
        sendErrorReply(QDBusError::NotSupported, QStringLiteral("Stowly opens no files."));
}

void FreedesktopApplication::ActivateAction(const QString& actionName, const QVariantList& parameter,
                                            const QVariantMap& platformData)
{
    Q_UNUSED(parameter)
    Q_UNUSED(platformData)
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("Stowly has no action called '%1'.").arg(actionName));
}

} // namespace stowly
