// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "HiddenWindowRecord.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cstdlib>

namespace stowly::kwin {

namespace {
// A uuid is short; anything else in the file is not ours to believe.
constexpr qsizetype maxRecordBytes = qsizetype{256} * 1024;
constexpr qsizetype maxUuidLength = 64;
} // namespace

HiddenWindowRecord::HiddenWindowRecord(std::string path) : m_path(std::move(path))
{
    if (m_path.empty()) {
        const char* runtime = std::getenv("XDG_RUNTIME_DIR");
        if (runtime == nullptr || *runtime == '\0')
            return;
        m_path = std::string(runtime) + "/stowly/hidden-windows";
    }
    QFile file(QString::fromStdString(m_path));
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray content = file.read(maxRecordBytes);
    for (const QByteArray& line : content.split('\n')) {
        const QByteArray uuid = line.trimmed();
        if (!uuid.isEmpty() && uuid.size() <= maxUuidLength)
            m_uuids.insert(uuid.toStdString());
    }
}

void HiddenWindowRecord::add(const std::vector<std::string>& uuids)
{
    const std::size_t before = m_uuids.size();
    m_uuids.insert(uuids.begin(), uuids.end());
    if (m_uuids.size() != before)
        save();
}

void HiddenWindowRecord::remove(const std::vector<std::string>& uuids)
{
    std::size_t removed = 0;
    for (const std::string& uuid : uuids)
        removed += m_uuids.erase(uuid);
    if (removed != 0)
        save();
}

void HiddenWindowRecord::keepOnly(const std::vector<std::string>& existing)
{
    const std::set<std::string> alive(existing.begin(), existing.end());
    std::size_t removed = 0;
    for (auto it = m_uuids.begin(); it != m_uuids.end();) {
        if (alive.count(*it) == 0) {
            it = m_uuids.erase(it);
            ++removed;
        } else {
            ++it;
        }
    }
    if (removed != 0)
        save();
}

void HiddenWindowRecord::save() const
{
    if (m_path.empty())
        return;
    const QString path = QString::fromStdString(m_path);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return; // the record is a convenience: without it, hidden apps read "Open"
    for (const std::string& uuid : m_uuids) {
        file.write(uuid.data(), static_cast<qint64>(uuid.size()));
        file.write("\n", 1);
    }
    file.commit();
}

} // namespace stowly::kwin
