#include "SingleInstance.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

#include <unistd.h>

namespace stowly {

namespace {

constexpr int kConnectTimeoutMs = 1000;
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

} // namespace

SingleInstance::SingleInstance(QObject* parent) : QObject(parent) {}

SingleInstance::~SingleInstance() = default;

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

bool SingleInstance::activateRunningInstance()
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

bool SingleInstance::listen(QString* error)
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
