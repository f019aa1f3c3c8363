// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "AppIconCache.h"
#include "RunningAppInfo.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace stowly {

class AppModel;

// The panel's open-apps list: AppModel::runningApps() as rows, kept in step with every
// refresh by moving, inserting and removing rows by process id, so that a row (and a menu
// open on it) survives the once-a-second refresh when its app is still listed.
class RunningAppsListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes the one open-apps list.")
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)

public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        NameRole,
        StatusRole,
        FormattedRamRole,
        StatusLineRole, // "<status> • RAM: <formattedRAM>"
        StatusColorRole,
        IconUrlRole,  // empty when the app has no icon
        MenuNameRole, // accessible name of the row's menu button
    };

    RunningAppsListModel(AppModel& model, AppIconCacheRef icons, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    int count() const { return int(m_apps.size()); }

    // While inactive (the panel is closed) the rows stay as they are: no row signals and
    // no icon conversion on the model's refreshes. Becoming active catches up at once.
    void setActive(bool active);
    bool isActive() const { return m_active; }
    // Drops every row and every converted icon (the view that showed them is gone);
    // the next activation builds them again.
    void release();
    // The converted icons of the rows shown.
    const AppIconCache& icons() const { return *m_icons; }

    // The row's menu entries; each hands the row's record to the model.
    Q_INVOKABLE void openApp(int row);
    Q_INVOKABLE void terminateApp(int row);
    Q_INVOKABLE void forceTerminateApp(int row);

signals:
    void countChanged();

private:
    void synchronize();
    int rowOf(std::int32_t pid, int from) const;
    const RunningAppInfo* appAt(int row) const;

    AppModel& m_model;
    AppIconCacheRef m_icons;
    std::vector<RunningAppInfo> m_apps;
    bool m_active = true;
};

} // namespace stowly
