// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "XdgAutostart.h"

#include "DesktopEntryFile.h"
#include "XdgDirs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <system_error>

namespace stowly::linuxdesktop {

namespace {

std::string systemError(int code)
{
    return std::generic_category().message(code);
}

std::string runningExecutable()
{
    std::string buffer(4096, '\0');
    const ssize_t n = ::readlink("/proc/self/exe", buffer.data(), buffer.size() - 1);
    if (n <= 0)
        return {};
    buffer.resize(static_cast<std::size_t>(n));
    return buffer;
}

// Desktop Entry Exec quoting: quote arguments with reserved characters and escape
// the characters that stay special inside quotes; '%' is doubled everywhere.
std::string execArgument(const std::string& path)
{
    bool needsQuotes = false;
    for (const char ch : path)
        if (std::string_view(" \t\n\"'\\><~|&;$*?#()`").find(ch) != std::string_view::npos)
            needsQuotes = true;
    std::string out;
    for (const char ch : path) {
        if (ch == '%') {
            out += "%%";
            continue;
        }
        if (needsQuotes && (ch == '"' || ch == '`' || ch == '$' || ch == '\\'))
            out += '\\';
        out += ch;
    }
    // The file format escapes backslashes once more.
    std::string escaped;
    for (const char ch : needsQuotes ? "\"" + out + "\"" : out) {
        if (ch == '\\')
            escaped += "\\\\";
        else
            escaped += ch;
    }
    return escaped;
}

// mkdir -p, answering the errno of the first failure (0 on success).
int makeDirectories(const std::string& path)
{
    std::string partial;
    std::size_t start = 0;
    while (start < path.size()) {
        const std::size_t end = std::min(path.find('/', start + 1), path.size());
        partial = path.substr(0, end);
        start = end;
        if (partial.empty())
            continue;
        if (::mkdir(partial.c_str(), 0700) != 0 && errno != EEXIST)
            return errno;
    }
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0)
        return errno;
    return S_ISDIR(st.st_mode) ? 0 : ENOTDIR;
}

} // namespace

XdgAutostart::XdgAutostart(std::string executable) : m_executable(std::move(executable)) {}

std::string XdgAutostart::entryPath()
{
    return xdgConfigHome() + "/autostart/app.stowly.Stowly.desktop";
}

std::string XdgAutostart::legacyEntryPath()
{
    return xdgConfigHome() + "/autostart/stowly.desktop";
}

LoginItemStatus XdgAutostart::status()
{
    std::ifstream in(entryPath());
    if (!in)
        in.open(legacyEntryPath());
    if (!in)
        return LoginItemStatus::notRegistered;
    bool disabled = false;
    for (const auto& [key, value] : readDesktopEntryGroup(in)) {
        if ((key == "Hidden" && value == "true") || (key == "X-GNOME-Autostart-enabled" && value == "false"))
            disabled = true;
    }
    // Present but switched off by the user: registered, waiting for approval.
    return disabled ? LoginItemStatus::requiresApproval : LoginItemStatus::enabled;
}

std::optional<std::string> XdgAutostart::registerMainApp()
{
    const std::string executable = m_executable.empty() ? runningExecutable() : m_executable;
    if (executable.empty())
        return systemError(ENOENT);
    const std::string path = entryPath();
    const std::string dir = path.substr(0, path.rfind('/'));
    if (const int error = makeDirectories(dir); error != 0)
        return systemError(error);

    const std::string text = "[Desktop Entry]\n"
                             "Type=Application\n"
                             "Name=Stowly\n"
                             "Comment=Minimize, hide, close or quit all apps from the tray\n"
                             "Exec=" +
                             execArgument(executable) +
                             "\n"
                             "Icon=app.stowly.Stowly\n"
                             "Terminal=false\n"
                             "X-GNOME-Autostart-enabled=true\n";
    // Write beside it and rename, so that a session starting meanwhile never reads half.
    const std::string temporary = path + ".tmp";
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return systemError(errno);
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t n = ::write(fd, text.data() + written, text.size() - written);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            const int error = errno;
            ::close(fd);
            ::unlink(temporary.c_str());
            return systemError(error);
        }
        written += static_cast<std::size_t>(n);
    }
    if (::close(fd) != 0) {
        const int error = errno;
        ::unlink(temporary.c_str());
        return systemError(error);
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        const int error = errno;
        ::unlink(temporary.c_str());
        return systemError(error);
    }
    // An entry written by an earlier version under the old name would start a second copy.
    if (::unlink(legacyEntryPath().c_str()) != 0 && errno != ENOENT)
        return systemError(errno);
    return std::nullopt;
}

std::optional<std::string> XdgAutostart::unregisterMainApp()
{
    for (const std::string& path : {entryPath(), legacyEntryPath()})
        if (::unlink(path.c_str()) != 0 && errno != ENOENT)
            return systemError(errno);
    return std::nullopt;
}

} // namespace stowly::linuxdesktop
