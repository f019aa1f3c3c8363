// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QString>

#include <optional>

class QDBusConnection;
class QLocalServer;

namespace stowly {

// One Stowly per user session. On the session bus the first start owns the well-known name
// app.stowly.Stowly and answers org.freedesktop.Application.Activate; a later start finds the
// name taken, calls Activate and exits. The bus drops the name with the connection of a
// process that ends, crashed or not, so nothing stale is left behind.
// Without a session bus a local socket in the user's runtime directory, named after the
// display, does the same; a socket left behind by a crashed instance answers no connection
// and is replaced.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    enum class Start {
        first,        // this process is the session's Stowly now
        handedOver,   // the running one was asked to open its panel
        notAnswering, // the running one holds the bus name but does not answer
    };

    static constexpr auto kBusName = "app.stowly.Stowly";

    explicit SingleInstance(QObject* parent = nullptr);
    ~SingleInstance() override;

    // detail: why a running instance could not be asked, or (with first) why a later start
    // will not find this one.
    Start claim(QString* detail = nullptr);

    // The socket path for this user and display.
    static QString socketPath();

signals:
    void activationRequested();

private:
    // Absent when the bus cannot be used at all, so the socket serves instead.
    std::optional<Start> claimBusName(QDBusConnection& bus, QString* detail);
    Start claimSocket(QString* detail);
    bool activateOverSocket();
    bool listenOnSocket(QString* error);

    QLocalServer* m_server = nullptr;
};

} // namespace stowly
