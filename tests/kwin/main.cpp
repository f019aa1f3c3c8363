// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "KWinAccessibility.h"
#include "KWinSession.h"
#include "PlasmaWindowManagement.h"
#include "TestBed.h"
#include "WaylandConnection.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <cstdio>
#include <cstring>

namespace {

// One KWin session for the whole run: starting one takes a few seconds. Torn down by gtest on
// every normal exit, and by the kernel (PR_SET_PDEATHSIG) should this process crash.
class SessionEnvironment : public ::testing::Environment {
public:
    void SetUp() override { s_session = new stowly::kwintest::KWinSession(STOWLY_TEST_BUILD_DIR); }
    void TearDown() override
    {
        delete s_session;
        s_session = nullptr;
    }
    static stowly::kwintest::KWinSession* s_session;
};
stowly::kwintest::KWinSession* SessionEnvironment::s_session = nullptr;

// After each test, whatever it started goes, passed or not (a failed assertion returns before
// the test's own clean-up), so that one failure does not turn into several.
class AppsEndWithTheirTest : public ::testing::EmptyTestEventListener {
public:
    void OnTestEnd(const ::testing::TestInfo&) override
    {
        if (SessionEnvironment::s_session != nullptr)
            SessionEnvironment::s_session->endApps();
    }
};

} // namespace

namespace stowly::kwintest {
KWinSession& sharedSession()
{
    return *SessionEnvironment::s_session;
}
} // namespace stowly::kwintest

int main(int argc, char** argv)
{
    // As a desktop session starts its programs (soft limit 1024 under a higher hard one),
    // so that what Stowly's children get tells the raised limit from the original.
    if (rlimit limit{}; ::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_max > 1024 && limit.rlim_cur > 1024) {
        limit.rlim_cur = 1024;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
    // A copy of this program at another path has no desktop entry: it reports whether KWin
    // offered it the interface anyway.
    if (argc == 2 && std::strcmp(argv[1], "--probe-grant") == 0) {
        QCoreApplication app(argc, argv);
        stowly::kwin::PlasmaWindowManagement management;
        std::printf("%s\n", !management.connection().isConnected() ? "no-connection"
                            : management.isGranted()               ? "granted"
                                                                   : "denied");
        return 0;
    }
    // The same copy asks for access the way the settings window does, then checks once a
    // second as the model's refresh does; it reports when KWin granted it.
    if (argc == 2 && std::strcmp(argv[1], "--request-access") == 0) {
        QCoreApplication app(argc, argv);
        stowly::kwin::PlasmaWindowManagement management;
        stowly::kwin::KWinAccessibilityTrust trust(management);
        if (trust.isProcessTrusted(true)) {
            std::printf("granted at once\n");
            return 0;
        }
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 10000) {
            QThread::msleep(250);
            if (trust.isProcessTrusted(false)) {
                std::printf("granted\n");
                return 0;
            }
        }
        std::printf("denied\n");
        return 0;
    }
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new SessionEnvironment);
    ::testing::UnitTest::GetInstance()->listeners().Append(new AppsEndWithTheirTest);
    return RUN_ALL_TESTS();
}
