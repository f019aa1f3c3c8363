// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "RunningAppsListModel.h"

#include "AppModel.h"
#include "Theme.h"
#include "ViewTexts.h"

#include <algorithm>

namespace stowly {

RunningAppsListModel::RunningAppsListModel(AppModel& model, AppIconCacheRef icons, QObject* parent)
    : QAbstractListModel(parent), m_model(model), m_icons(std::move(icons))
{
    connect(&m_model, &AppModel::runningAppsChanged, this, [this] {
        if (m_active)
            synchronize();
    });
    synchronize();
}

void RunningAppsListModel::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    if (m_active)
        synchronize();
}

void RunningAppsListModel::release()
{
    if (!m_apps.empty()) {
        beginResetModel();
        std::vector<RunningAppInfo>().swap(m_apps);
        endResetModel();
        emit countChanged();
    }
    m_icons->clear();
}

int RunningAppsListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant RunningAppsListModel::data(const QModelIndex& index, int role) const
{
    const RunningAppInfo* app = appAt(index.row());
    if (!app || index.parent().isValid())
        return {};
    switch (role) {
    case IdRole: return app->id;
    case Qt::DisplayRole:
    case NameRole: return app->name;
    case StatusRole: return app->status();
    case FormattedRamRole: return app->formattedRAM();
    case StatusLineRole: return ViewTexts::appStatusLine(app->status(), app->formattedRAM());
    case StatusColorRole: return ColorScheme::current().statusColor(app->status());
    case IconUrlRole: return m_icons->url(app->id);
    case MenuNameRole: return ViewTexts::rowMenuName(app->name);
    default: return {};
    }
}

QHash<int, QByteArray> RunningAppsListModel::roleNames() const
{
    return {
        {IdRole, "appId"},
        {NameRole, "name"},
        {StatusRole, "status"},
        {FormattedRamRole, "formattedRAM"},
        {StatusLineRole, "statusLine"},
        {StatusColorRole, "statusColor"},
        {IconUrlRole, "iconUrl"},
        {MenuNameRole, "menuName"},
    };
}

void RunningAppsListModel::openApp(int row)
{
    if (const RunningAppInfo* app = appAt(row))
        m_model.openApp(RunningAppInfo(*app));
}

void RunningAppsListModel::terminateApp(int row)
{
    if (const RunningAppInfo* app = appAt(row))
        m_model.terminateApp(RunningAppInfo(*app));
}

void RunningAppsListModel::forceTerminateApp(int row)
{
    if (const RunningAppInfo* app = appAt(row))
        m_model.forceTerminateApp(RunningAppInfo(*app));
}

const RunningAppInfo* RunningAppsListModel::appAt(int row) const
{
    if (row < 0 || row >= count())
        return nullptr;
    return &m_apps[std::size_t(row)];
}

int RunningAppsListModel::rowOf(std::int32_t pid, int from) const
{
    for (int row = from; row < count(); ++row) {
        if (m_apps[std::size_t(row)].id == pid)
            return row;
    }
    return -1;
}

void RunningAppsListModel::synchronize()
{
    const std::vector<RunningAppInfo>& target = m_model.runningApps();
    const int oldCount = count();

    std::vector<std::pair<std::int32_t, AppIconRef>> icons;
    icons.reserve(target.size());
    for (const RunningAppInfo& app : target)
        icons.emplace_back(app.id, app.icon);
    m_icons->update(icons);

    // Rows whose app left the list go first.
    for (int row = count() - 1; row >= 0; --row) {
        const std::int32_t pid = m_apps[std::size_t(row)].id;
        const bool kept =
            std::any_of(target.begin(), target.end(), [pid](const RunningAppInfo& app) { return app.id == pid; });
        if (!kept) {
            beginRemoveRows({}, row, row);
            m_apps.erase(m_apps.begin() + row);
            endRemoveRows();
        }
    }
    // Then every target position in turn: the same app updated in place, an app from
    // further down moved up, or a new app inserted.
    for (int row = 0; row < int(target.size()); ++row) {
        const RunningAppInfo& wanted = target[std::size_t(row)];
        const int found = rowOf(wanted.id, row);
        if (found == row) {
            m_apps[std::size_t(row)] = wanted;
            emit dataChanged(index(row), index(row));
        } else if (found > row) {
            beginMoveRows({}, found, found, {}, row);
            m_apps.erase(m_apps.begin() + found);
            m_apps.insert(m_apps.begin() + row, wanted);
            endMoveRows();
            emit dataChanged(index(row), index(row));
        } else {
            beginInsertRows({}, row, row);
            m_apps.insert(m_apps.begin() + row, wanted);
            endInsertRows();
        }
    }
    if (count() > int(target.size())) {
        beginRemoveRows({}, int(target.size()), count() - 1);
        m_apps.resize(target.size());
        endRemoveRows();
    }
    if (count() != oldCount)
        emit countChanged();
}

} // namespace stowly
