// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "SingleInstance.h"

#include "FreedesktopApplication.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

#include <unistd.h>

namespace stowly {

namespace {

constexpr int kConnectTimeoutMs = 1000;
// The running instance answers from its event loop within milliseconds; the margin is for a
// first start still building its panel when a second one arrives, on a loaded machine.
constexpr int kActivateTimeoutMs = 15000;
const QByteArray kActivateRequest = QByteArrayLiteral("activate\n");
const QByteArray kAcknowledgement = QByteArrayLiteral("ok\n");

// The display names the session: two X servers of one user each get their own Stowly.
QString sessionTag()
{
    QString display = qEnvironmentVariable("WAYLAND_DISPLAY");
    if (display.isEmpty())
        display = qEnvironmentVariable("DISPLAY");
    QString tag;
    for (const QChar ch : display)
        tag += ch.isLetterOrNumber() ? ch : QLatin1Char('_');
    return tag.isEmpty() ? QStringLiteral("none") : tag;
}

bool ownerIsGone(const QDBusMessage& answer)
{
    const QString error = answer.errorName();
    return error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
           error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
}

} // namespace

SingleInstance::SingleInstance(QObject* parent) : QObject(parent) {}

SingleInstance::~SingleInstance() = default;

SingleInstance::Start SingleInstance::claim(QString* detail)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected() && bus.interface()) {
        if (const std::optional<Start> start = claimBusName(bus, detail))
            return *start;
    }
    return claimSocket(detail);
}

std::optional<SingleInstance::Start> SingleInstance::claimBusName(QDBusConnection& bus, QString* detail)
{
    const QString name = QString::fromLatin1(kBusName);
    const QString path = FreedesktopApplication::objectPathFor(name);
    auto* application = new FreedesktopApplication(this);
    connect(application, &FreedesktopApplication::activationRequested, this, &SingleInstance::activationRequested);
    // In place before the name is taken: a second start may call as soon as it sees the name.
    if (!bus.registerObject(path, application, QDBusConnection::ExportScriptableSlots)) {
        delete application;
        return std::nullopt;
    }

    // A few rounds at most: an owner that ends between our request and our call frees the name.
    for (int attempt = 0; attempt < 3; ++attempt) {
        const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply = bus.interface()->registerService(
            name, QDBusConnectionInterface::DontQueueService, QDBusConnectionInterface::DontAllowReplacement);
        if (!reply.isValid())
            break;
        if (reply.value() == QDBusConnectionInterface::ServiceRegistered)
            return Start::first;

        QDBusMessage call = QDBusMessage::createMethodCall(
            name, path, QString::fromLatin1(FreedesktopApplication::kInterface), QStringLiteral("Activate"));
        call << QVariantMap();
        // Nothing is to be started on our behalf: the name's owner, or nobody.
        call.setAutoStartService(false);
        const QDBusMessage answer = bus.call(call, QDBus::Block, kActivateTimeoutMs);
        if (answer.type() == QDBusMessage::ReplyMessage)
            return Start::handedOver;
        // An owner that died while we called: its name is free, or about to be.
        if (ownerIsGone(answer) || !bus.interface()->isServiceRegistered(name).value())
            continue;
        if (detail) {
            const QDBusReply<uint> pid = bus.interface()->servicePid(name);
            *detail = QStringLiteral("Stowly (process %1) holds %2 on the session bus but does not answer (%3); "
                                     "end it or wait, then start Stowly again.")
                          .arg(pid.isValid() ? QString::number(pid.value()) : QStringLiteral("unknown"), name,
                               answer.errorName());
        }
        return Start::notAnswering;
    }
    bus.unregisterObject(path);
    delete application;
    return std::nullopt;
}

SingleInstance::Start SingleInstance::claimSocket(QString* detail)
{
    if (activateOverSocket())
        return Start::handedOver;
    QString error;
    if (!listenOnSocket(&error) && detail)
        *detail = QStringLiteral("cannot watch for a second start: %1").arg(error);
    return Start::first;
}

QString SingleInstance::socketPath()
{
    // XDG_RUNTIME_DIR is private to the user; without it, the user id keeps users apart.
    QString directory = qEnvironmentVariable("XDG_RUNTIME_DIR");
    QString name = QStringLiteral("app.stowly.Stowly-%1.socket").arg(sessionTag());
    // A socket path must fit sockaddr_un's 108 bytes; a runtime folder that deep is rare,
    // but then the temporary folder, with the user id, serves instead.
    constexpr qsizetype kMaxSocketPath = 107;
    if (directory.isEmpty() || !QDir(directory).exists() ||
        QDir(directory).filePath(name).toLocal8Bit().size() > kMaxSocketPath) {
        directory = QDir::tempPath();
        name = QStringLiteral("app.stowly.Stowly-%1-%2.socket").arg(::getuid()).arg(sessionTag());
    }
    return QDir(directory).filePath(name);
}

bool SingleInstance::activateOverSocket()
{
    QLocalSocket socket;
    socket.connectToServer(socketPath());
    if (!socket.waitForConnected(kConnectTimeoutMs))
        return false;
    socket.write(kActivateRequest);
    if (!socket.waitForBytesWritten(kConnectTimeoutMs))
        return false;
    // An instance that hangs without answering counts as not running.
    while (socket.bytesAvailable() < kAcknowledgement.size()) {
        if (!socket.waitForReadyRead(kConnectTimeoutMs))
            return false;
    }
    return socket.readAll().startsWith(kAcknowledgement);
}

bool SingleInstance::listenOnSocket(QString* error)
{
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    const QString path = socketPath();
    if (!m_server->listen(path)) {
        // Nobody answered on it a moment ago: a crashed instance's socket file.
        QLocalServer::removeServer(path);
        if (!m_server->listen(path)) {
            if (error)
                *error = m_server->errorString();
            return false;
        }
    }
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* client = m_server->nextPendingConnection()) {
            connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
            connect(client, &QLocalSocket::readyRead, this, [this, client] {
                if (!client->canReadLine())
                    return;
                const QByteArray line = client->readLine(64);
                if (line == kActivateRequest) {
                    client->write(kAcknowledgement);
                    client->flush();
                    emit activationRequested();
                }
                client->disconnectFromServer();
            });
        }
    });
    return true;
}

} // namespace stowly
