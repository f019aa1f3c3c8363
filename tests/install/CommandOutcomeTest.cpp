// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// A command's exit status and output stream follow how the model says the command went,
// whatever its sentence happens to begin with.
#include "AppModel.h"
#include "CommandLine.h"
#include "FakePlatform.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using stowly::AppModel;
using stowly::CommandRequest;

class CommandOutcome : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        // The model's refresh timer wants an application object.
        if (!QCoreApplication::instance()) {
            static int argc = 1;
            static char name[] = "stowly_command_line_tests";
            static char* argv[] = {name, nullptr};
            static QCoreApplication application(argc, argv);
        }
    }

    stowly::fakes::FakePlatform fakes;
    stowly::Platform platform = fakes.platform();

    void addAppWithWindows(std::int32_t pid, const std::string& name, int count)
    {
        fakes.workspace.addApp(pid, name);
        fakes.accessibility.applicationElement(pid);
        for (int i = 1; i <= count; ++i)
            fakes.accessibility.addWindow(pid, name + std::to_string(i));
    }

    struct Outcome {
        int status;
        std::string out;
        std::string err;
    };

    Outcome run(CommandRequest::Kind kind, const char* target = "")
    {
        AppModel model(platform);
        CommandRequest request;
        request.kind = kind;
        request.target = QString::fromUtf8(target);
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        const int status = stowly::runCommand(request, model);
        std::string out = ::testing::internal::GetCapturedStdout();
        std::string err = ::testing::internal::GetCapturedStderr();
        return {status, out, err};
    }
};

TEST_F(CommandOutcome, WindowsMinimizedExitZeroOnStandardOutput)
{
    fakes.trust.trusted = true;
    addAppWithWindows(10, "Notes", 2);
    const Outcome outcome = run(CommandRequest::Kind::minimizeAll);
    EXPECT_EQ(outcome.status, stowly::exitSuccess);
    EXPECT_EQ(outcome.out, "Minimized 2 windows.\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(CommandOutcome, AnAccessibilityErrorExitsOneOnStandardError)
{
    fakes.trust.trusted = true;
    addAppWithWindows(10, "Notes", 1);
    auto& windows =
        std::get<stowly::AXElementList>(fakes.accessibility.applicationElement(10)->attributes["AXWindows"].value);
    std::static_pointer_cast<stowly::fakes::FakeElement>(windows[0])->setAnswers["AXMinimized"] =
        stowly::kAXErrorCannotComplete;
    const Outcome outcome = run(CommandRequest::Kind::minimizeAll);
    EXPECT_EQ(outcome.status, stowly::exitNothingDone);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "Accessibility call failed with code -25204.\n");
}

TEST_F(CommandOutcome, MissingAccessExitsOne)
{
    addAppWithWindows(10, "Notes", 1);
    const Outcome outcome = run(CommandRequest::Kind::closeAll);
    EXPECT_EQ(outcome.status, stowly::exitNothingDone);
    EXPECT_EQ(outcome.err, "Accessibility access is required before closing other apps' windows.\n");
}

TEST_F(CommandOutcome, AnAppThatRefusesToCloseExitsOne)
{
    fakes.workspace.addApp(10, "Notes")->terminateAnswer = false;
    const Outcome outcome = run(CommandRequest::Kind::close, "notes");
    EXPECT_EQ(outcome.status, stowly::exitNothingDone);
    EXPECT_EQ(outcome.err, "Could not close Notes.\n");
}

TEST_F(CommandOutcome, ForceQuitOfOneAppByPidExitsZero)
{
    auto notes = fakes.workspace.addApp(10, "Notes");
    const Outcome outcome = run(CommandRequest::Kind::forceQuit, "10");
    EXPECT_EQ(outcome.status, stowly::exitSuccess);
    EXPECT_EQ(outcome.out, "Force quit sent to Notes.\n");
    EXPECT_EQ(notes->forceTerminateCalls, 1);
}

} // namespace
