// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "WindowManagerSettings.h"

#include "DetachedProcess.h"
#include "TextUtil.h"

#include <QStandardPaths>

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace stowly::x11 {

namespace {

struct KnownSettings {
    const char* windowManager; // lower-case part of the check window's name
    const char* desktop;       // an XDG_CURRENT_DESKTOP entry, upper-case
    const char* title;
    std::vector<QStringList> commands; // the first one installed is used
};

const std::vector<KnownSettings>& knownSettings()
{
    static const std::vector<KnownSettings> known = {
        {"openbox", "LXDE", "Openbox Configuration Manager", {{QStringLiteral("obconf")}}},
        {"xfwm4", "XFCE", "Window Manager Settings", {{QStringLiteral("xfwm4-settings")}}},
        {"kwin",
         "KDE",
         "System Settings",
         {{QStringLiteral("systemsettings"), QStringLiteral("kcm_kwinoptions")},
          {QStringLiteral("systemsettings5"), QStringLiteral("kcm_kwinoptions")}}},
        {"marco", "MATE", "Window Preferences", {{QStringLiteral("mate-window-properties")}}},
        {"metacity", "GNOME-FLASHBACK", "Tweaks", {{QStringLiteral("gnome-tweaks")}}},
        {"mutter", "GNOME", "Tweaks", {{QStringLiteral("gnome-tweaks")}}},
        {"gnome shell", "GNOME", "Tweaks", {{QStringLiteral("gnome-tweaks")}}},
    };
    return known;
}

std::optional<WindowManagerSettings::Program> installed(const KnownSettings& settings,
                                                        const std::function<QString(const QString&)>& findExecutable)
{
    for (const QStringList& command : settings.commands) {
        const QString path = findExecutable(command.front());
        if (!path.isEmpty())
            return WindowManagerSettings::Program{settings.title, path, command.mid(1)};
    }
    return std::nullopt;
}

} // namespace

std::optional<WindowManagerSettings::Program>
WindowManagerSettings::programFor(const std::optional<std::string>& windowManagerName,
                                  const std::string& currentDesktops,
                                  const std::function<QString(const QString&)>& findExecutable)
{
    if (windowManagerName) {
        const QString name = QString::fromStdString(*windowManagerName).toLower();
        for (const KnownSettings& settings : knownSettings()) {
            if (name.contains(QLatin1String(settings.windowManager)))
                return installed(settings, findExecutable);
        }
        return std::nullopt; // a window manager we know no settings program of
    }
    for (const QString& desktop : QString::fromStdString(currentDesktops).split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        for (const KnownSettings& settings : knownSettings()) {
            if (desktop.compare(QLatin1String(settings.desktop), Qt::CaseInsensitive) == 0)
                return installed(settings, findExecutable);
        }
    }
    return std::nullopt;
}

std::optional<std::string> WindowManagerSettings::name()
{
    const auto program = resolve();
    return program ? std::optional<std::string>(program->title) : std::nullopt;
}

bool WindowManagerSettings::open()
{
    const auto program = resolve();
    return program && linuxdesktop::startDetachedProcess(program->executable, program->arguments);
}

std::optional<WindowManagerSettings::Program> WindowManagerSettings::resolve()
{
    const char* desktops = std::getenv("XDG_CURRENT_DESKTOP");
    return programFor(runningWindowManagerName(), desktops ? desktops : "",
                      [](const QString& program) { return QStandardPaths::findExecutable(program); });
}

std::optional<std::string> WindowManagerSettings::runningWindowManagerName()
{
    if (!m_x.ensureConnected())
        return std::nullopt;
    xcb_connection_t* c = m_x.get();
    auto readProperty = [&](xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::uint32_t longs) {
        xcb_generic_error_t* error = nullptr;
        xcb_get_property_reply_t* reply =
            xcb_get_property_reply(c, xcb_get_property_unchecked(c, 0, window, property, type, 0, longs), &error);
        std::free(error);
        m_x.countRoundTrip();
        std::string value;
        if (reply != nullptr && reply->type == type && xcb_get_property_value_length(reply) > 0)
            value.assign(static_cast<const char*>(xcb_get_property_value(reply)),
                         static_cast<std::size_t>(xcb_get_property_value_length(reply)));
        std::free(reply);
        return value;
    };
    const std::string check = readProperty(m_x.root(), m_x.atom(Atom::NET_SUPPORTING_WM_CHECK), XCB_ATOM_WINDOW, 1);
    xcb_window_t checkWindow = XCB_NONE;
    if (check.size() >= sizeof checkWindow)
        std::memcpy(&checkWindow, check.data(), sizeof checkWindow);
    if (checkWindow == XCB_NONE)
        return std::nullopt;
    // The name of a running window manager does not change: read it once per check window.
    if (checkWindow != m_checkWindow || m_x.generation() != m_checkGeneration) {
        std::string name = readProperty(checkWindow, m_x.atom(Atom::NET_WM_NAME), m_x.atom(Atom::UTF8_STRING), 256);
        m_windowManagerName =
            name.empty() ? std::nullopt : std::optional<std::string>(linuxdesktop::sanitizeUtf8(name));
        m_checkWindow = checkWindow;
        m_checkGeneration = m_x.generation();
    }
    return m_windowManagerName;
}

} // namespace stowly::x11
