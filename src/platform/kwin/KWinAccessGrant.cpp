// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "KWinAccessGrant.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <climits>
#include <cstdlib>
#include <unistd.h>

namespace stowly::kwin {

namespace {

// Kept apart from the desktop entry an installed package ships, which may grant the same
// interface to the installed path: this one grants it to whatever copy asked.
constexpr const char* kEntryFileName = "app.stowly.Stowly.window-access.desktop";

std::string runningExecutable()
{
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

std::string userApplicationsDir()
{
    if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data == '/')
        return std::string(data) + "/applications";
    const char* home = std::getenv("HOME");
    return std::string(home != nullptr ? home : "") + "/.local/share/applications";
}

} // namespace

std::string kwinExecArgument(const std::string& path)
{
    std::string command;
    const bool grouped = path.empty() || path.find_first_of(" \t\n\"") != std::string::npos;
    if (grouped)
        command += '"';
    for (const char c : path) {
        if (c == '"')
            command += R"(""")";
        else
            command += c;
    }
    if (grouped)
        command += '"';
    std::string value;
    for (const char c : command) {
        if (c == '\\')
            value += '\\';
        value += c;
    }
    return value;
}

KWinAccessGrant::KWinAccessGrant(std::string executable, const std::string& applicationsDir)
    : m_executable(executable.empty() ? runningExecutable() : std::move(executable)),
      m_entryPath((applicationsDir.empty() ? userApplicationsDir() : applicationsDir) + "/" + kEntryFileName)
{
}

std::string KWinAccessGrant::entryText() const
{
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Stowly\n"
           "Comment=Lets Stowly see and arrange other apps' windows on KDE Plasma\n"
           "Exec=" +
           kwinExecArgument(m_executable) +
           "\n"
           "Icon=app.stowly.Stowly\n"
           "NoDisplay=true\n"
           "X-KDE-Wayland-Interfaces=org_kde_plasma_window_management\n";
}

bool KWinAccessGrant::isWritten() const
{
    QFile file(QString::fromStdString(m_entryPath));
    return file.open(QIODevice::ReadOnly) && file.readAll().toStdString() == entryText();
}

std::optional<std::string> KWinAccessGrant::write() const
{
    if (m_executable.empty())
        return std::string("The running program's path is unknown.");
    const QString path = QString::fromStdString(m_entryPath);
    if (!QDir().mkpath(QFileInfo(path).absolutePath()))
        return "Cannot create " + QFileInfo(path).absolutePath().toStdString() + ".";
    QSaveFile file(path);
    const std::string text = entryText();
    if (!file.open(QIODevice::WriteOnly) || file.write(text.data(), static_cast<qint64>(text.size())) < 0 ||
        !file.commit())
        return file.errorString().toStdString();
    return std::nullopt;
}

} // namespace stowly::kwin
