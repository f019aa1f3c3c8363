// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// A stand-in StatusNotifierWatcher for the tray tests: it owns the watcher's bus name,
// records each item that registers, reads the item's properties back over the bus, and
// clicks it with Activate(x, y) as a tray host does.
//   stand_in_sni_watcher X Y
#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QTimer>

#include <cstdio>

namespace {

QVariant itemProperty(const QString& service, const QString& name)
{
    QDBusMessage get =
        QDBusMessage::createMethodCall(service, QStringLiteral("/StatusNotifierItem"),
                                       QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << QStringLiteral("org.kde.StatusNotifierItem") << name;
    const QDBusMessage reply = QDBusConnection::sessionBus().call(get, QDBus::Block, 2000);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return reply.arguments().first().value<QDBusVariant>().variant();
}

class Watcher : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

public:
    Watcher(QObject* parent, int x, int y) : QDBusAbstractAdaptor(parent), m_x(x), m_y(y) {}
    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }

public slots:
    void RegisterStatusNotifierItem(const QString& service, const QDBusMessage& message)
    {
        // Items may give their bus name or only a path; the sender is the item either way.
        const QString owner = service.startsWith(QLatin1Char('/')) ? message.service() : service;
        std::printf("registered %s\n", qPrintable(service));
        std::fflush(stdout);
        QTimer::singleShot(0, this, [this, owner] { inspectAndClick(owner); });
    }
    void RegisterStatusNotifierHost(const QString&) {}

private:
    void inspectAndClick(const QString& service)
    {
        std::printf("Id=%s\n", qPrintable(itemProperty(service, QStringLiteral("Id")).toString()));
        std::printf("Title=%s\n", qPrintable(itemProperty(service, QStringLiteral("Title")).toString()));
        std::printf("ItemIsMenu=%s\n", itemProperty(service, QStringLiteral("ItemIsMenu")).toBool() ? "true" : "false");
        // a(iiay): count the images and note the first one's size and data length.
        const QDBusArgument pixmaps = itemProperty(service, QStringLiteral("IconPixmap")).value<QDBusArgument>();
        int count = 0;
        pixmaps.beginArray();
        while (!pixmaps.atEnd()) {
            int width = 0, height = 0;
            QByteArray bytes;
            pixmaps.beginStructure();
            pixmaps >> width >> height >> bytes;
            pixmaps.endStructure();
            std::printf("IconPixmap %dx%d %lld bytes\n", width, height, static_cast<long long>(bytes.size()));
            ++count;
        }
        pixmaps.endArray();
        std::printf("IconPixmaps=%d\n", count);
        QDBusMessage activate =
            QDBusMessage::createMethodCall(service, QStringLiteral("/StatusNotifierItem"),
                                           QStringLiteral("org.kde.StatusNotifierItem"), QStringLiteral("Activate"));
        activate << m_x << m_y;
        QDBusConnection::sessionBus().call(activate, QDBus::NoBlock);
        std::printf("activated %d %d\n", m_x, m_y);
        std::fflush(stdout);
    }

    int m_x, m_y;
};

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const int x = argc > 2 ? QString::fromLatin1(argv[1]).toInt() : 0;
    const int y = argc > 2 ? QString::fromLatin1(argv[2]).toInt() : 0;
    QObject root;
    new Watcher(&root, x, y);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), &root, QDBusConnection::ExportAdaptors) ||
        !bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"))) {
        std::fprintf(stderr, "cannot own the watcher name\n");
        return 1;
    }
    std::printf("watching\n");
    std::fflush(stdout);
    return app.exec();
}

#include "stand_in_sni_watcher.moc"
