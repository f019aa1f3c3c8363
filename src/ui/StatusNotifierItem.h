// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// The tray icon as a StatusNotifierItem on the session bus, the tray protocol of KDE Plasma
// (and of other Wayland desktops). Qt's own tray class speaks it too but drops the click
// position that the tray host sends with Activate(x, y); on Wayland that position is the
// only way to know where the icon is, so this item keeps it.

#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPoint>
#include <QString>

namespace stowly {

// One image of the icon as the protocol carries it: width, height, ARGB32 in network order.
struct StatusNotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;
};
using StatusNotifierPixmaps = QList<StatusNotifierPixmap>;

// (icon name, icon pixmaps, title, text)
struct StatusNotifierToolTip {
    QString iconName;
    StatusNotifierPixmaps pixmaps;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);

// ARGB32 in network byte order, as the protocol wants it.
StatusNotifierPixmap statusNotifierPixmap(const QImage& image);

class StatusNotifierItem : public QObject {
    Q_OBJECT
public:
    static constexpr const char* watcherService = "org.kde.StatusNotifierWatcher";

    // Whether a tray host listens on the session bus (its watcher is registered).
    static bool isHostAvailable();

    StatusNotifierItem(QString id, QString title, const QList<QImage>& images, QObject* parent = nullptr);
    ~StatusNotifierItem() override;

    // Claims our bus name, exports the item and registers it with the watcher; false when
    // any of it failed (no session bus, no watcher).
    bool registerItem();
    const QString& serviceName() const { return m_serviceName; }

    // Properties the host reads.
    QString id() const { return m_id; }
    QString title() const { return m_title; }
    const StatusNotifierPixmaps& pixmaps() const { return m_pixmaps; }

signals:
    // A primary click (or keyboard activation) in the tray, at this global position.
    void activated(QPoint position);
    // A secondary click: the context menu, at this position.
    void contextMenuRequested(QPoint position);

private:
    QString m_id;
    QString m_title;
    StatusNotifierPixmaps m_pixmaps;
    QString m_serviceName;
    bool m_registered = false;
};

} // namespace stowly

Q_DECLARE_METATYPE(stowly::StatusNotifierPixmap)
Q_DECLARE_METATYPE(stowly::StatusNotifierToolTip)
