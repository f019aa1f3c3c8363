// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace stowly {

// The org.freedesktop.Application interface (freedesktop.org Desktop Entry, D-Bus activation)
// on the session bus: a later start, a launcher or a script calls Activate to bring up the
// running Stowly. Stowly opens no files and declares no desktop actions, so Open and
// ActivateAction answer with an error and change nothing.
class FreedesktopApplication : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    static constexpr auto kInterface = "org.freedesktop.Application";

    explicit FreedesktopApplication(QObject* parent = nullptr);

    // The object path the freedesktop.org Desktop Entry rules derive from a bus name:
    // "app.stowly.Stowly" gives "/app/stowly/Stowly".
    static QString objectPathFor(const QString& busName);

    // Exported as scriptable slots: only these three, never QObject's own.
public slots:
    Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
    Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
    Q_SCRIPTABLE void ActivateAction(const QString& actionName, const QVariantList& parameter,
                                     const QVariantMap& platformData);

signals:
    void activationRequested();
};

} // namespace stowly
