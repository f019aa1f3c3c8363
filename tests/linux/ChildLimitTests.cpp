// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Stowly raises its own limit on open descriptors; every program it starts must get the
// limit Stowly was started with. This process starts as a desktop session starts its
// programs (soft limit 1024 under a higher hard one), raises as Stowly does, and reads
// /proc/PID/limits of what each way of starting a program starts. The URL handler needs a
// real platform plugin, so a bare Xvfb runs beside.

#include "DesktopUrlOpener.h"
#include "DetachedProcess.h"
#include "OpenFileLimit.h"
#include "TestBed.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace stowly::linuxdesktop;
namespace tb = stowly::testbed;

// A folder of stand-in programs: each, when started, writes its own limits to NAME.limits.
class FakePrograms {
public:
    FakePrograms()
    {
        char folder[] = "/tmp/stowly-child-limit-XXXXXX";
        m_folder = ::mkdtemp(folder) ? folder : "";
    }
    ~FakePrograms()
    {
        for (const std::string& name : m_names) {
            for (const char* suffix : {"", ".limits", ".limits.part"})
                ::unlink((m_folder + "/" + name + suffix).c_str());
        }
        ::rmdir(m_folder.c_str());
    }
    FakePrograms(const FakePrograms&) = delete;
    FakePrograms& operator=(const FakePrograms&) = delete;

    std::string add(const std::string& name)
    {
        m_names.push_back(name);
        const std::string path = m_folder + "/" + name;
        tb::writeFile(path, "#!/bin/sh\n/bin/cat /proc/$$/limits > '" + path + ".limits.part'\n/bin/mv '" + path +
                                ".limits.part' '" + path + ".limits'\n");
        ::chmod(path.c_str(), 0755);
        return path;
    }

    // The soft limit the program got, once it has written it (at most 10 s).
    std::string softLimitOf(const std::string& name) const
    {
        const std::string file = m_folder + "/" + name + ".limits";
        if (!tb::waitUntil([&] { return !tb::readText(file).empty(); }))
            return "not started";
        return tb::softOpenFileLimit(tb::readText(file));
    }

    const std::string& folder() const { return m_folder; }

private:
    std::string m_folder;
    std::vector<std::string> m_names;
};

// Sets an environment variable for as long as the object lives.
class Env {
public:
    Env(const char* name, const std::string& value) : m_name(name)
    {
        if (const char* old = std::getenv(name))
            m_old = old;
        ::setenv(name, value.c_str(), 1);
    }
    ~Env()
    {
        if (m_old)
            ::setenv(m_name, m_old->c_str(), 1);
        else
            ::unsetenv(m_name);
    }
    Env(const Env&) = delete;
    Env& operator=(const Env&) = delete;

private:
    const char* m_name;
    std::optional<std::string> m_old;
};

rlimit limitNow()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    return limit;
}

std::string originalText()
{
    return std::to_string(openfilelimit::original());
}

TEST(OpenFileLimit, IsRaisedToTheHardLimitAtMostAndRemembersTheOriginal)
{
    const rlimit limit = limitNow();
    const rlim_t wanted = limit.rlim_max == RLIM_INFINITY ? openfilelimit::kMostKept
                                                          : std::min<rlim_t>(limit.rlim_max, openfilelimit::kMostKept);
    EXPECT_EQ(limit.rlim_cur, std::max<rlim_t>(wanted, openfilelimit::original()));
    if (limit.rlim_max > 1024) {
        EXPECT_EQ(openfilelimit::original(), 1024u);
    }
}

TEST(ChildOpenFileLimit, DetachedProgramsGetTheOriginalLimit)
{
    FakePrograms programs;
    const std::string program = programs.add("settings");
    const rlim_t before = limitNow().rlim_cur;
    qint64 pid = 0;
    ASSERT_TRUE(startDetachedProcess(QString::fromStdString(program), {}, &pid));
    EXPECT_GT(pid, 0);
    EXPECT_EQ(programs.softLimitOf("settings"), originalText());
    EXPECT_EQ(limitNow().rlim_cur, before) << "Stowly's own limit stays raised";
}

TEST(ChildOpenFileLimit, TheUrlHandlerGetsTheOriginalLimit)
{
    FakePrograms programs;
    programs.add("xdg-open");
    const Env path("PATH", programs.folder() + ":/usr/bin:/bin");
    const rlim_t before = limitNow().rlim_cur;
    DesktopUrlOpener opener;
    ASSERT_TRUE(opener.openUrl("https://example.org/"));
    EXPECT_EQ(programs.softLimitOf("xdg-open"), originalText());
    EXPECT_EQ(limitNow().rlim_cur, before);
}

} // namespace

int main(int argc, char** argv)
{
    // As a desktop session starts its programs: 1024 under a higher hard limit.
    if (rlimit limit = limitNow(); limit.rlim_max > 1024 && limit.rlim_cur > 1024) {
        limit.rlim_cur = 1024;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
    openfilelimit::raise();
    const tb::Display display(false);
    if (!display.ok()) {
        std::fprintf(stderr, "could not start Xvfb\n");
        return 1;
    }
    ::setenv("DISPLAY", display.name().c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
