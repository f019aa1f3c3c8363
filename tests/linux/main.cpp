// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TestBed.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <memory>

namespace {

// One private display for the whole run; torn down by gtest on every normal exit, and by
// the kernel (PR_SET_PDEATHSIG) should this process crash.
class DisplayEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        m_display = std::make_unique<stowly::testbed::Display>();
        ASSERT_TRUE(m_display->ok()) << "could not start Xvfb with openbox";
        s_display = m_display.get();
    }
    void TearDown() override
    {
        s_display = nullptr;
        m_display.reset();
    }
    static stowly::testbed::Display* s_display;

private:
    std::unique_ptr<stowly::testbed::Display> m_display;
};

stowly::testbed::Display* DisplayEnvironment::s_display = nullptr;

// Every test starts on a window manager that is proven to manage new windows, so that one
// test leaving openbox stuck cannot fail the tests after it.
class WindowManagerCheck : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override
    {
        if (DisplayEnvironment::s_display != nullptr)
            DisplayEnvironment::s_display->ensureWindowManager();
    }
};

} // namespace

namespace stowly::testbed {
Display& sharedDisplay()
{
    return *DisplayEnvironment::s_display;
}
} // namespace stowly::testbed

int main(int argc, char** argv)
{
    // As a desktop session starts its programs (soft limit 1024 under a higher hard one),
    // so that what Stowly's children get tells the raised limit from the original.
    if (rlimit limit{}; ::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_max > 1024 && limit.rlim_cur > 1024) {
        limit.rlim_cur = 1024;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
    stowly::testbed::prepareEnvironment(STOWLY_TEST_BUILD_DIR);
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new DisplayEnvironment);
    ::testing::UnitTest::GetInstance()->listeners().Append(new WindowManagerCheck);
    return RUN_ALL_TESTS();
}
