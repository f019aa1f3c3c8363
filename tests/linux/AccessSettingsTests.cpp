// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// What "Open System Settings" opens on X11: the running window manager's settings
// program, found by the name on its EWMH check window, when it is installed.

#include "OpenFileLimit.h"
#include "TestBed.h"
#include "WindowManagerSettings.h"
#include "X11Platform.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

using namespace stowly;
using namespace stowly::testbed;
using stowly::x11::WindowManagerSettings;

namespace stowly::testbed {
Display& sharedDisplay();
}

namespace {

// Every program "installed" under /opt/bin.
QString installedEverywhere(const QString& program)
{
    return QStringLiteral("/opt/bin/") + program;
}

QString installedNowhere(const QString&)
{
    return {};
}

// PATH of one folder only, for as long as the object lives: what the machine has
// installed plays no part.
class PathOf {
public:
    explicit PathOf(const std::string& folder) : m_old(std::getenv("PATH") ? std::getenv("PATH") : "")
    {
        ::setenv("PATH", folder.c_str(), 1);
    }
    ~PathOf() { ::setenv("PATH", m_old.c_str(), 1); }

private:
    std::string m_old;
};

} // namespace

TEST(WindowManagerSettingsChoice, ByWindowManagerNameThenByDesktop)
{
    auto openbox = WindowManagerSettings::programFor(std::string("Openbox"), "", installedEverywhere);
    ASSERT_TRUE(openbox);
    EXPECT_EQ(openbox->title, "Openbox Configuration Manager");
    EXPECT_EQ(openbox->executable, QStringLiteral("/opt/bin/obconf"));
    EXPECT_TRUE(openbox->arguments.isEmpty());

    auto kwin = WindowManagerSettings::programFor(std::string("KWin"), "", installedEverywhere);
    ASSERT_TRUE(kwin);
    EXPECT_EQ(kwin->title, "System Settings");
    EXPECT_EQ(kwin->arguments, QStringList{QStringLiteral("kcm_kwinoptions")});
    EXPECT_EQ(WindowManagerSettings::programFor(std::string("Xfwm4"), "", installedEverywhere)->title,
              "Window Manager Settings");
    EXPECT_EQ(WindowManagerSettings::programFor(std::string("Marco"), "", installedEverywhere)->executable,
              QStringLiteral("/opt/bin/mate-window-properties"));

    // A window manager we know nothing for, or whose program is not installed: nothing,
    // whatever the desktop says.
    EXPECT_FALSE(WindowManagerSettings::programFor(std::string("Fluxbox"), "XFCE", installedEverywhere));
    EXPECT_FALSE(WindowManagerSettings::programFor(std::string("Openbox"), "", installedNowhere));

    // No window manager running: the desktop's own settings, first match of the list.
    auto xfce = WindowManagerSettings::programFor(std::nullopt, "X-Cinnamon:xfce:LXDE", installedEverywhere);
    ASSERT_TRUE(xfce);
    EXPECT_EQ(xfce->executable, QStringLiteral("/opt/bin/xfwm4-settings"));
    EXPECT_FALSE(WindowManagerSettings::programFor(std::nullopt, "", installedEverywhere));
    EXPECT_FALSE(WindowManagerSettings::programFor(std::nullopt, "Unity", installedEverywhere));
}

TEST(WindowManagerSettingsChoice, KdeTakesTheFirstInstalledSystemSettings)
{
    auto onlyFive = [](const QString& program) {
        return program == QStringLiteral("systemsettings5") ? QStringLiteral("/usr/bin/systemsettings5") : QString();
    };
    auto kde = WindowManagerSettings::programFor(std::nullopt, "KDE", onlyFive);
    ASSERT_TRUE(kde);
    EXPECT_EQ(kde->executable, QStringLiteral("/usr/bin/systemsettings5"));
}

TEST(WindowManagerSettingsOnOpenbox, OffersAndStartsObconfOnlyWhenInstalled)
{
    ASSERT_TRUE(sharedDisplay().ok());
    x11::X11Platform linux_;
    AccessSettings& settings = linux_.platform().accessSettings;

    const std::string folder = dirs().root + "/wm-settings-bin";
    ::mkdir(folder.c_str(), 0755);
    const std::string marker = folder + "/obconf-started";
    ::unlink(marker.c_str());
    {
        // Not installed: nothing is offered and nothing opens.
        PathOf path(folder);
        ::unlink((folder + "/obconf").c_str());
        EXPECT_EQ(settings.name(), std::nullopt);
        EXPECT_FALSE(settings.open());
    }
    const std::string limits = folder + "/obconf-limits";
    ::unlink(limits.c_str());
    writeFile(folder + "/obconf",
              "#!/bin/sh\n/bin/cat /proc/$$/limits > '" + limits + "'\necho \"$@\" > '" + marker + "'\n");
    ::chmod((folder + "/obconf").c_str(), 0755);
    {
        PathOf path(folder);
        EXPECT_EQ(settings.name(), std::optional<std::string>("Openbox Configuration Manager"));
        EXPECT_TRUE(settings.open());
        EXPECT_TRUE(waitUntil([&] { return !readText(marker).empty(); }));
        // It starts with the limit on open descriptors Stowly was started with, not Stowly's raised one.
        if (rlimit limit{}; ::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_max > 1024) {
            EXPECT_GT(limit.rlim_cur, linuxdesktop::openfilelimit::original()) << "Stowly's own is raised";
        }
        EXPECT_EQ(softOpenFileLimit(readText(limits)), std::to_string(linuxdesktop::openfilelimit::original()));
    }
}
