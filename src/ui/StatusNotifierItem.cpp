// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "StatusNotifierItem.h"

#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QtEndian>

namespace stowly {

namespace {

constexpr const char* kItemPath = "/StatusNotifierItem";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";

// org.kde.StatusNotifierItem on the bus. Properties and methods are what a host reads and
// calls; the item itself lives in StatusNotifierItem.
class ItemAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(stowly::StatusNotifierPixmaps IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ emptyName)
    Q_PROPERTY(stowly::StatusNotifierPixmaps OverlayIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionIconName READ emptyName)
    Q_PROPERTY(stowly::StatusNotifierPixmaps AttentionIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionMovieName READ emptyName)
    Q_PROPERTY(stowly::StatusNotifierToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)

public:
    explicit ItemAdaptor(StatusNotifierItem* item) : QDBusAbstractAdaptor(item), m_item(item) {}

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return m_item->id(); }
    QString title() const { return m_item->title(); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    // Pixmaps only: our icon is drawn, not taken from the theme.
    QString iconName() const { return {}; }
    StatusNotifierPixmaps iconPixmap() const { return m_item->pixmaps(); }
    QString emptyName() const { return {}; }
    StatusNotifierPixmaps noPixmaps() const { return {}; }
    StatusNotifierToolTip toolTip() const { return {QString(), {}, m_item->title(), QString()}; }
    // A click opens our panel rather than a menu the host would draw.
    bool itemIsMenu() const { return false; }
    QDBusObjectPath menu() const { return QDBusObjectPath(QStringLiteral("/NO_DBUSMENU")); }

public slots:
    void Activate(int x, int y) { emit m_item->activated(QPoint(x, y)); }
    void SecondaryActivate(int x, int y) { emit m_item->activated(QPoint(x, y)); }
    void ContextMenu(int x, int y) { emit m_item->contextMenuRequested(QPoint(x, y)); }
    void Scroll(int, const QString&) {}

signals:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString& status);

private:
    StatusNotifierItem* m_item;
};

void registerTypes()
{
    static const bool done = [] {
        qDBusRegisterMetaType<StatusNotifierPixmap>();
        qDBusRegisterMetaType<StatusNotifierPixmaps>();
        qDBusRegisterMetaType<StatusNotifierToolTip>();
        return true;
    }();
    (void)done;
}

} // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.pixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.pixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

StatusNotifierPixmap statusNotifierPixmap(const QImage& image)
{
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    StatusNotifierPixmap pixmap{argb.width(), argb.height(), QByteArray()};
    pixmap.bytes.resize(static_cast<qsizetype>(argb.width()) * argb.height() * 4);
    auto* out = reinterpret_cast<uchar*>(pixmap.bytes.data());
    for (int y = 0; y < argb.height(); ++y) {
        const auto* line = reinterpret_cast<const quint32*>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x, out += 4)
            qToBigEndian<quint32>(line[x], out);
    }
    return pixmap;
}

bool StatusNotifierItem::isHostAvailable()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() && bus.interface() != nullptr &&
           bus.interface()->isServiceRegistered(QString::fromLatin1(watcherService)).value();
}

StatusNotifierItem::StatusNotifierItem(QString id, QString title, const QList<QImage>& images, QObject* parent)
    : QObject(parent), m_id(std::move(id)), m_title(std::move(title))
{
    registerTypes();
    for (const QImage& image : images)
        m_pixmaps.append(statusNotifierPixmap(image));
    new ItemAdaptor(this);
}

StatusNotifierItem::~StatusNotifierItem()
{
    if (!m_registered)
        return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterObject(QString::fromLatin1(kItemPath));
    bus.unregisterService(m_serviceName);
}

bool StatusNotifierItem::registerItem()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return false;
    // One item per process: the name the protocol asks for, with our pid.
    m_serviceName = QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
    if (!bus.registerService(m_serviceName))
        return false;
    if (!bus.registerObject(QString::fromLatin1(kItemPath), this, QDBusConnection::ExportAdaptors)) {
        bus.unregisterService(m_serviceName);
        return false;
    }
    m_registered = true;
    QDBusInterface watcher(QString::fromLatin1(watcherService), QString::fromLatin1(kWatcherPath),
                           QString::fromLatin1(watcherService), bus);
    // A host that does not answer soon is no host to wait for at start-up.
    watcher.setTimeout(2000);
    const QDBusMessage reply = watcher.call(QStringLiteral("RegisterStatusNotifierItem"), m_serviceName);
    return reply.type() == QDBusMessage::ReplyMessage;
}

} // namespace stowly

#include "StatusNotifierItem.moc"
