// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Asking KWin for the window-management interface, end to end: our entry is written and a
// new connection is granted, for a program path with spaces and quotes too.
#include "KWinAccessGrant.h"
#include "KWinSession.h"
#include "OpenFileLimit.h"
#include "PlasmaSystemSettings.h"
#include "TestBed.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace tb = stowly::testbed;
using stowly::kwin::KWinAccessGrant;
using stowly::kwin::kwinExecArgument;
using stowly::kwintest::sharedSession;

namespace {

TEST(ExecQuoting, PathsAreWrittenTheWayKWinSplitsThem)
{
    EXPECT_EQ(kwinExecArgument("/usr/bin/stowly"), "/usr/bin/stowly");
    EXPECT_EQ(kwinExecArgument("/opt/my apps/stowly"), "\"/opt/my apps/stowly\"");
    // Three quotes for a literal one; $ and ` are literal for KWin; a backslash is doubled
    // for the string value only.
    EXPECT_EQ(kwinExecArgument("/a\"b$c`d\\e"), "\"/a\"\"\"b$c`d\\\\e\"");
    EXPECT_EQ(kwinExecArgument(""), "\"\"");
}

TEST(ExecQuoting, TheEntryNamesTheProgramAndTheInterface)
{
    // Under a regular file no folder can be made, not even by root.
    const KWinAccessGrant grant("/opt/my apps/stowly", "/proc/version/applications");
    const std::string text = grant.entryText();
    EXPECT_NE(text.find("\nExec=\"/opt/my apps/stowly\"\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\nX-KDE-Wayland-Interfaces=org_kde_plasma_window_management\n"), std::string::npos);
    EXPECT_EQ(grant.entryPath(), "/proc/version/applications/app.stowly.Stowly.window-access.desktop");
    EXPECT_FALSE(grant.isWritten());
    EXPECT_TRUE(grant.write().has_value()) << "a folder that cannot be made is reported";
}

TEST(KWinAccess, RequestingWritesTheEntryAndANewConnectionIsGranted)
{
    ASSERT_TRUE(sharedSession().ok()) << sharedSession().error();
    // A path KWin has never seen, with a space and a quote in it.
    const std::string dir = sharedSession().root() + "/my \"apps\"";
    mkdir(dir.c_str(), 0700);
    const std::string copy = dir + "/stowly probe";
    tb::run("cp /proc/" + std::to_string(getpid()) + "/exe '" + copy + "'");
    ASSERT_EQ(tb::run("'" + copy + "' --probe-grant"), "denied\n");

    EXPECT_EQ(tb::run("'" + copy + "' --request-access"), "granted\n");
    const std::string entry =
        tb::readText(sharedSession().root() + "/data/applications/app.stowly.Stowly.window-access.desktop");
    EXPECT_NE(entry.find("Exec=" + kwinExecArgument(copy) + "\n"), std::string::npos) << entry;
    // From now on every new connection of that program is granted at once.
    EXPECT_EQ(tb::run("'" + copy + "' --probe-grant"), "granted\n");
}

} // namespace

namespace {

TEST(PlasmaSettings, OfferedAsSystemSettingsOnlyWhenInstalled)
{
    stowly::kwin::PlasmaSystemSettings none([](const QString&) { return QString(); });
    EXPECT_FALSE(none.name().has_value());
    EXPECT_FALSE(none.open());

    stowly::linuxdesktop::openfilelimit::raise(); // as every Linux session does at start-up
    // A stand-in for System Settings that leaves a mark when started.
    const std::string dir = sharedSession().root() + "/settings-bin";
    mkdir(dir.c_str(), 0700);
    const std::string program = dir + "/systemsettings5";
    const std::string mark = dir + "/started";
    const std::string limits = dir + "/limits";
    tb::writeFile(program, "#!/bin/sh\n/bin/cat /proc/$$/limits > '" + limits + "'\necho \"$@\" > '" + mark + "'\n");
    chmod(program.c_str(), 0755);
    stowly::kwin::PlasmaSystemSettings plasma([&](const QString& name) {
        return name == QStringLiteral("systemsettings5") ? QString::fromStdString(program) : QString();
    });
    EXPECT_EQ(plasma.name(), std::optional<std::string>("System Settings"));
    EXPECT_TRUE(plasma.open());
    EXPECT_TRUE(tb::waitUntil([&] { return !tb::readText(mark).empty(); }));
    // Started with the limit on open descriptors Stowly was started with, not its raised one.
    EXPECT_EQ(tb::softOpenFileLimit(tb::readText(limits)),
              std::to_string(stowly::linuxdesktop::openfilelimit::original()));
}

} // namespace
