// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "TestSupport.h"
#include "WindowMinimizer.h"

#include <gtest/gtest.h>

namespace stowly {
namespace {

using fakes::FakeElement;
using fakes::FakeElementRef;
using testing::logEntriesStartingWith;
using testing::q;

class WindowOperations : public ::testing::Test {
protected:
    fakes::FakeWorkspace workspace;
    fakes::FakeAccessibility accessibility;
    fakes::FakeProcessTable processTable;
    WindowMinimizer minimizer{workspace, accessibility, processTable};

    std::vector<FakeElementRef> appWithWindows(std::int32_t pid, const std::string& name, int count)
    {
        workspace.addApp(pid, name);
        accessibility.applicationElement(pid);
        std::vector<FakeElementRef> windows;
        for (int i = 1; i <= count; ++i)
            windows.push_back(accessibility.addWindow(pid, name + std::to_string(i)));
        return windows;
    }

    static bool isMinimized(const FakeElementRef& window)
    {
        const auto* flag = std::get_if<bool>(&window->attributes.at("AXMinimized").value);
        return flag && *flag;
    }

    static FakeElementRef closeButton(const FakeElementRef& window)
    {
        return std::static_pointer_cast<FakeElement>(
            std::get<AXElementRef>(window->attributes.at("AXCloseButton").value));
    }

    std::vector<std::string> minimizeWrites() const { return logEntriesStartingWith(accessibility.log, "set:"); }
    std::vector<std::string> presses() const { return logEntriesStartingWith(accessibility.log, "perform:"); }
};

// ---- Empty walks -----------------------------------------------------------------------

TEST_F(WindowOperations, NoManagedAppsMinimizeAndCloseReturnZero)
{
    EXPECT_EQ(minimizer.minimizeAllWindows(), 0);
    EXPECT_EQ(minimizer.closeAllWindows(), 0);
}

TEST_F(WindowOperations, OnlyUnmanagedAppsWithWindowsReturnZero)
{
    workspace.addApp(20, "Bar", ActivationPolicy::accessory);
    accessibility.addWindow(20, "Bar1");
    workspace.addApp(workspace.ownPid, "Stowly");
    accessibility.addWindow(workspace.ownPid, "Stowly1");
    EXPECT_EQ(minimizer.minimizeAllWindows(), 0);
    EXPECT_EQ(minimizer.closeAllWindows(), 0);
    EXPECT_TRUE(minimizeWrites().empty());
    EXPECT_TRUE(presses().empty());
}

TEST_F(WindowOperations, WindowsReadFailureContributesNoWindowsAndNoError)
{
    appWithWindows(10, "Alpha", 2);
    accessibility.applicationElement(10)->attributes["AXWindows"].code = kAXErrorCannotComplete;
    appWithWindows(11, "Beta", 1);
    EXPECT_TRUE(minimizer.windows(*workspace.apps[0]).empty());
    EXPECT_EQ(minimizer.minimizeAllWindows(), 1);
}

TEST_F(WindowOperations, WindowsReadWithNoValueContributesNoWindows)
{
    appWithWindows(10, "Alpha", 0);
    accessibility.applicationElement(10)->attributes["AXWindows"] = {kAXErrorSuccess, AXAbsent{}};
    appWithWindows(11, "Beta", 1);
    EXPECT_TRUE(minimizer.windows(*workspace.apps[0]).empty());
    EXPECT_EQ(minimizer.closeAllWindows(), 1);
}

TEST_F(WindowOperations, WindowsReadOfANonListContributesNoWindows)
{
    appWithWindows(10, "Alpha", 0);
    auto lone = std::make_shared<FakeElement>("lone");
    accessibility.applicationElement(10)->attributes["AXWindows"] = {kAXErrorSuccess, AXElementRef(lone)};
    appWithWindows(11, "Beta", 1);
    appWithWindows(12, "Gamma", 0);
    accessibility.applicationElement(12)->attributes["AXWindows"] = {kAXErrorSuccess, std::string("AXWindow")};
    EXPECT_TRUE(minimizer.windows(*workspace.apps[0]).empty());
    EXPECT_TRUE(minimizer.windows(*workspace.apps[2]).empty());
    EXPECT_EQ(minimizer.minimizeAllWindows(), 1);
}

TEST_F(WindowOperations, AppWithoutAccessibleInterfaceHasNoWindows)
{
    workspace.addApp(10, "Alpha"); // no element scripted: every read is unsupported
    EXPECT_TRUE(minimizer.windows(*workspace.apps[0]).empty());
    EXPECT_EQ(minimizer.minimizeAllWindows(), 0);
}

TEST_F(WindowOperations, WindowsKeepThePlatformOrder)
{
    const auto made = appWithWindows(10, "Alpha", 3);
    const auto listed = minimizer.windows(*workspace.apps[0]);
    ASSERT_EQ(listed.size(), 3u);
    for (std::size_t i = 0; i < made.size(); ++i)
        EXPECT_EQ(listed[i], made[i]);
}

// ---- Which windows are standard --------------------------------------------------------

TEST_F(WindowOperations, SheetRoleIsSkippedByBothOperations)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    windows[0]->attributes["AXRole"] = {kAXErrorSuccess, std::string("AXSheet")};
    EXPECT_FALSE(minimizer.isStandardWindow(windows[0]));
    EXPECT_EQ(minimizer.minimizeAllWindows(), 0);
    EXPECT_EQ(minimizer.closeAllWindows(), 0);
    EXPECT_TRUE(minimizeWrites().empty());
    EXPECT_TRUE(presses().empty());
}

TEST_F(WindowOperations, UnreadableRoleIsSkippedByBothOperations)
{
    auto windows = appWithWindows(10, "Alpha", 2);
    windows[0]->attributes["AXRole"].code = kAXErrorInvalidUIElement;
    windows[1]->attributes.erase("AXRole");
    EXPECT_FALSE(minimizer.isStandardWindow(windows[0]));
    EXPECT_FALSE(minimizer.isStandardWindow(windows[1]));
    EXPECT_EQ(minimizer.minimizeAllWindows(), 0);
    EXPECT_EQ(minimizer.closeAllWindows(), 0);
}

TEST_F(WindowOperations, RoleOfAnotherTypeOrCaseIsNotAWindow)
{
    auto windows = appWithWindows(10, "Alpha", 2);
    windows[0]->attributes["AXRole"] = {kAXErrorSuccess, AXOther{"CFData"}};
    windows[1]->attributes["AXRole"] = {kAXErrorSuccess, std::string("axwindow")};
    EXPECT_FALSE(minimizer.isStandardWindow(windows[0]));
    EXPECT_FALSE(minimizer.isStandardWindow(windows[1]));
}

TEST_F(WindowOperations, WindowWithoutSubroleIsStandardAndActedOn)
{
    auto windows = appWithWindows(10, "Alpha", 2);
    windows[0]->attributes.erase("AXSubrole");
    windows[1]->attributes["AXSubrole"].code = kAXErrorNoValue;
    EXPECT_TRUE(minimizer.isStandardWindow(windows[0]));
    EXPECT_TRUE(minimizer.isStandardWindow(windows[1]));
    EXPECT_EQ(minimizer.minimizeAllWindows(), 2);
    EXPECT_EQ(minimizer.closeAllWindows(), 2);
}

TEST_F(WindowOperations, DialogSubroleIsSkippedByBothOperations)
{
    auto windows = appWithWindows(10, "Alpha", 2);
    windows[0]->attributes["AXSubrole"] = {kAXErrorSuccess, std::string("AXDialog")};
    EXPECT_EQ(minimizer.minimizeAllWindows(), 1);
    EXPECT_EQ(minimizer.closeAllWindows(), 1);
    EXPECT_FALSE(isMinimized(windows[0]));
    EXPECT_EQ(presses(), std::vector<std::string>{"perform:Alpha2.close:AXPress"});
}

TEST_F(WindowOperations, SystemDialogSubroleIsSkippedByBothOperations)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    windows[0]->attributes["AXSubrole"] = {kAXErrorSuccess, std::string("AXSystemDialog")};
    EXPECT_FALSE(minimizer.isStandardWindow(windows[0]));
    EXPECT_EQ(minimizer.minimizeAllWindows(), 0);
    EXPECT_EQ(minimizer.closeAllWindows(), 0);
    EXPECT_TRUE(presses().empty());
}

TEST_F(WindowOperations, FloatingAndUnknownSubrolesCountAsStandard)
{
    auto windows = appWithWindows(10, "Alpha", 2);
    windows[0]->attributes["AXSubrole"] = {kAXErrorSuccess, std::string("AXFloatingWindow")};
    windows[1]->attributes["AXSubrole"] = {kAXErrorSuccess, std::string("AXSomethingNew")};
    EXPECT_TRUE(minimizer.isStandardWindow(windows[0]));
    EXPECT_TRUE(minimizer.isStandardWindow(windows[1]));
}

// ---- Minimize --------------------------------------------------------------------------

TEST_F(WindowOperations, AlreadyMinimizedIsSkippedByMinimizeButClosedAndCounted)
{
    auto windows = appWithWindows(10, "Alpha", 2);
    windows[0]->attributes["AXMinimized"] = {kAXErrorSuccess, true};
    EXPECT_EQ(minimizer.minimizeAllWindows(), 1);
    EXPECT_EQ(minimizeWrites(), std::vector<std::string>{"set:Alpha2:AXMinimized"});
    EXPECT_EQ(minimizer.closeAllWindows(), 2);
    EXPECT_EQ(presses(), (std::vector<std::string>{"perform:Alpha1.close:AXPress", "perform:Alpha2.close:AXPress"}));
}

TEST_F(WindowOperations, UnreadableMinimizedFlagIsNeitherTriedNorCounted)
{
    auto windows = appWithWindows(10, "Alpha", 3);
    windows[0]->attributes["AXMinimized"].code = kAXErrorCannotComplete;
    windows[1]->attributes["AXMinimized"] = {kAXErrorSuccess, std::string("no")};
    windows[2]->attributes.erase("AXMinimized");
    EXPECT_EQ(minimizer.minimizeAllWindows(), 0);
    EXPECT_TRUE(minimizeWrites().empty());
}

TEST_F(WindowOperations, MinimizedFlagAsNumberZeroOrOneIsRead)
{
    auto windows = appWithWindows(10, "Alpha", 3);
    windows[0]->attributes["AXMinimized"] = {kAXErrorSuccess, AXNumber{0}};
    windows[1]->attributes["AXMinimized"] = {kAXErrorSuccess, AXNumber{1}};
    windows[2]->attributes["AXMinimized"] = {kAXErrorSuccess, AXNumber{2}};
    EXPECT_EQ(minimizer.copyBoolAttribute("AXMinimized", windows[0]), std::optional<bool>(false));
    EXPECT_EQ(minimizer.copyBoolAttribute("AXMinimized", windows[1]), std::optional<bool>(true));
    EXPECT_EQ(minimizer.copyBoolAttribute("AXMinimized", windows[2]), std::nullopt);
    EXPECT_EQ(minimizer.minimizeAllWindows(), 1);
    EXPECT_EQ(minimizeWrites(), std::vector<std::string>{"set:Alpha1:AXMinimized"});
}

TEST_F(WindowOperations, MinimizeWritesPlatformTrueAndReportsTheWindow)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    EXPECT_TRUE(minimizer.minimize(windows[0]));
    EXPECT_TRUE(isMinimized(windows[0]));
    EXPECT_FALSE(minimizer.minimize(windows[0])); // now already minimized
}

TEST_F(WindowOperations, AttributeUnsupportedOnSetIsNotCountedAndTheWalkGoesOn)
{
    auto windows = appWithWindows(10, "Alpha", 3);
    windows[1]->setAnswers["AXMinimized"] = kAXErrorAttributeUnsupported;
    EXPECT_EQ(minimizer.minimizeAllWindows(), 2);
    EXPECT_TRUE(isMinimized(windows[0]));
    EXPECT_FALSE(isMinimized(windows[1]));
    EXPECT_TRUE(isMinimized(windows[2]));
}

TEST_F(WindowOperations, MinimizeFailsWithMinus25204OnThirdWindowOfSecondApp)
{
    // Added out of name order: the walk follows names (Alpha, Beta, Gamma).
    auto beta = appWithWindows(11, "Beta", 4);
    auto gamma = appWithWindows(12, "Gamma", 2);
    auto alpha = appWithWindows(10, "Alpha", 2);
    beta[2]->setAnswers["AXMinimized"] = kAXErrorCannotComplete;

    try {
        const auto count = minimizer.minimizeAllWindows();
        FAIL() << "expected MinimizeError, got a count of " << count;
    } catch (const MinimizeError& error) {
        EXPECT_EQ(error.kind(), MinimizeError::Kind::axFailure);
        EXPECT_EQ(error.code(), -25204);
        EXPECT_EQ(error.errorDescription(), q("Accessibility call failed with code -25204."));
    }
    EXPECT_TRUE(isMinimized(alpha[0]));
    EXPECT_TRUE(isMinimized(alpha[1]));
    EXPECT_TRUE(isMinimized(beta[0]));
    EXPECT_TRUE(isMinimized(beta[1]));
    EXPECT_FALSE(isMinimized(beta[2]));
    EXPECT_FALSE(isMinimized(beta[3]));
    EXPECT_FALSE(isMinimized(gamma[0]));
    EXPECT_FALSE(isMinimized(gamma[1]));
    EXPECT_EQ(minimizeWrites(),
              (std::vector<std::string>{"set:Alpha1:AXMinimized", "set:Alpha2:AXMinimized", "set:Beta1:AXMinimized",
                                        "set:Beta2:AXMinimized", "set:Beta3:AXMinimized"}));
    // Nothing past the failing window was even read.
    for (const auto& entry : accessibility.log) {
        EXPECT_EQ(entry.find("Beta4"), std::string::npos) << entry;
        EXPECT_EQ(entry.find("Gamma"), std::string::npos) << entry;
    }
    // The failing request is the last one; the batch still ends after it.
    ASSERT_GE(accessibility.log.size(), 2u);
    EXPECT_EQ(accessibility.log[accessibility.log.size() - 2], "set:Beta3:AXMinimized");
    EXPECT_EQ(accessibility.log.back(), "batch:end");
}

TEST_F(WindowOperations, OtherSetFailuresCarryTheirOwnCode)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    windows[0]->setAnswers["AXMinimized"] = kAXErrorInvalidUIElement; // the window vanished
    try {
        minimizer.minimize(windows[0]);
        FAIL() << "expected MinimizeError";
    } catch (const MinimizeError& error) {
        EXPECT_EQ(error.code(), -25202);
        EXPECT_EQ(error.errorDescription(), q("Accessibility call failed with code -25202."));
    }
}

TEST_F(WindowOperations, ActionUnsupportedOnSetMinimizedIsAFailure)
{
    // Only -25205 is tolerated when writing the flag; -25206 belongs to pressing.
    auto windows = appWithWindows(10, "Alpha", 1);
    windows[0]->setAnswers["AXMinimized"] = kAXErrorActionUnsupported;
    EXPECT_THROW(minimizer.minimizeAllWindows(), MinimizeError);
}

// ---- Close -----------------------------------------------------------------------------

TEST_F(WindowOperations, WindowWithoutCloseButtonIsNotClosed)
{
    auto windows = appWithWindows(10, "Alpha", 3);
    windows[0]->attributes.erase("AXCloseButton");                           // unsupported
    windows[1]->attributes["AXCloseButton"] = {kAXErrorSuccess, AXAbsent{}}; // no value
    windows[2]->attributes["AXCloseButton"].code = kAXErrorCannotComplete;   // read fails
    EXPECT_FALSE(minimizer.close(windows[0]));
    EXPECT_FALSE(minimizer.close(windows[1]));
    EXPECT_FALSE(minimizer.close(windows[2]));
    EXPECT_EQ(minimizer.closeAllWindows(), 0);
    EXPECT_TRUE(presses().empty());
}

TEST_F(WindowOperations, ActionUnsupportedOnPressIsNotCountedAndTheWalkGoesOn)
{
    auto windows = appWithWindows(10, "Alpha", 3);
    closeButton(windows[0])->actionAnswers["AXPress"] = kAXErrorActionUnsupported;
    EXPECT_EQ(minimizer.closeAllWindows(), 2);
    EXPECT_EQ(presses().size(), 3u);
}

TEST_F(WindowOperations, CloseFailsOnSecondAppAndStopsTheWalk)
{
    auto alpha = appWithWindows(10, "Alpha", 1);
    auto beta = appWithWindows(11, "Beta", 2);
    auto gamma = appWithWindows(12, "Gamma", 1);
    closeButton(beta[0])->actionAnswers["AXPress"] = kAXErrorCannotComplete;
    try {
        minimizer.closeAllWindows();
        FAIL() << "expected MinimizeError";
    } catch (const MinimizeError& error) {
        EXPECT_EQ(error.errorDescription(), q("Accessibility call failed with code -25204."));
    }
    EXPECT_EQ(presses(), (std::vector<std::string>{"perform:Alpha1.close:AXPress", "perform:Beta1.close:AXPress"}));
}

TEST_F(WindowOperations, AttributeUnsupportedOnPressIsAFailure)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    closeButton(windows[0])->actionAnswers["AXPress"] = kAXErrorAttributeUnsupported;
    EXPECT_THROW(minimizer.closeAllWindows(), MinimizeError);
}

TEST_F(WindowOperations, CloseDoesNotReadTheMinimizedFlag)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    windows[0]->attributes["AXMinimized"].code = kAXErrorCannotComplete;
    EXPECT_TRUE(minimizer.close(windows[0]));
    EXPECT_TRUE(logEntriesStartingWith(accessibility.log, "copy:Alpha1:AXMinimized").empty());
}

class WindowOperationsDeathTest : public WindowOperations {};

TEST_F(WindowOperationsDeathTest, CloseButtonThatIsNotAnElementStopsTheProgram)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    windows[0]->attributes["AXCloseButton"] = {kAXErrorSuccess, std::string("AXButton")};
    EXPECT_DEATH(minimizer.close(windows[0]), "");
}

// ---- Attribute readers -------------------------------------------------------------------

TEST_F(WindowOperations, CopyStringAttributeConvertsNoOtherType)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    auto& w = windows[0];
    w->attributes["AXTitle"] = {kAXErrorSuccess, std::string("Report.txt")};
    w->attributes["AXCount"] = {kAXErrorSuccess, AXNumber{3}};
    w->attributes["AXFlag"] = {kAXErrorSuccess, true};
    w->attributes["AXFailed"] = {kAXErrorCannotComplete, std::string("stale")};
    EXPECT_EQ(minimizer.copyStringAttribute("AXTitle", w), std::optional<std::string>("Report.txt"));
    EXPECT_EQ(minimizer.copyStringAttribute("AXCount", w), std::nullopt);
    EXPECT_EQ(minimizer.copyStringAttribute("AXFlag", w), std::nullopt);
    EXPECT_EQ(minimizer.copyStringAttribute("AXFailed", w), std::nullopt);
    EXPECT_EQ(minimizer.copyStringAttribute("AXMissing", w), std::nullopt);
}

TEST_F(WindowOperations, CopyBoolAttributeReadsBooleansAndNothingElse)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    auto& w = windows[0];
    w->attributes["AXYes"] = {kAXErrorSuccess, true};
    w->attributes["AXNo"] = {kAXErrorSuccess, false};
    w->attributes["AXText"] = {kAXErrorSuccess, std::string("true")};
    w->attributes["AXHalf"] = {kAXErrorSuccess, AXNumber{0.5}};
    w->attributes["AXNone"] = {kAXErrorSuccess, AXAbsent{}};
    EXPECT_EQ(minimizer.copyBoolAttribute("AXYes", w), std::optional<bool>(true));
    EXPECT_EQ(minimizer.copyBoolAttribute("AXNo", w), std::optional<bool>(false));
    EXPECT_EQ(minimizer.copyBoolAttribute("AXText", w), std::nullopt);
    EXPECT_EQ(minimizer.copyBoolAttribute("AXHalf", w), std::nullopt);
    EXPECT_EQ(minimizer.copyBoolAttribute("AXNone", w), std::nullopt);
    EXPECT_EQ(minimizer.copyBoolAttribute("AXMissing", w), std::nullopt);
}

// ---- Request batches ---------------------------------------------------------------

// Where a walk begins and ends its batch, and how many requests fall inside it.
struct BatchShape {
    std::vector<std::size_t> begins;
    std::vector<std::size_t> ends;
    std::size_t requestsOutside = 0;
};

BatchShape batchShape(const std::vector<std::string>& log)
{
    BatchShape shape;
    int open = 0;
    for (std::size_t i = 0; i < log.size(); ++i) {
        if (log[i] == "batch:begin") {
            shape.begins.push_back(i);
            ++open;
        } else if (log[i] == "batch:end") {
            shape.ends.push_back(i);
            --open;
        } else if (open == 0 && (log[i].starts_with("set:") || log[i].starts_with("perform:"))) {
            ++shape.requestsOutside;
        }
    }
    return shape;
}

TEST_F(WindowOperations, EachBulkWalkIsOneBatchAroundAllItsRequests)
{
    appWithWindows(11, "Beta", 2);
    appWithWindows(10, "Alpha", 3);
    ASSERT_EQ(minimizer.minimizeAllWindows(), 5);
    BatchShape shape = batchShape(accessibility.log);
    EXPECT_EQ(shape.begins, (std::vector<std::size_t>{0}));
    EXPECT_EQ(shape.ends, (std::vector<std::size_t>{accessibility.log.size() - 1}));
    EXPECT_EQ(shape.requestsOutside, 0u);
    EXPECT_EQ(minimizeWrites().size(), 5u);

    accessibility.log.clear();
    ASSERT_EQ(minimizer.closeAllWindows(), 5);
    shape = batchShape(accessibility.log);
    EXPECT_EQ(shape.begins, (std::vector<std::size_t>{0}));
    EXPECT_EQ(shape.ends, (std::vector<std::size_t>{accessibility.log.size() - 1}));
    EXPECT_EQ(shape.requestsOutside, 0u);
    EXPECT_EQ(presses().size(), 5u);
}

TEST_F(WindowOperations, AWalkWithNothingToDoStillEndsItsBatch)
{
    EXPECT_EQ(minimizer.minimizeAllWindows(), 0);
    EXPECT_EQ(accessibility.log, (std::vector<std::string>{"batch:begin", "batch:end"}));
}

TEST_F(WindowOperations, AFailedCloseWalkEndsItsBatchAfterTheRequestsItMade)
{
    auto alpha = appWithWindows(10, "Alpha", 2);
    auto beta = appWithWindows(11, "Beta", 2);
    closeButton(beta[0])->actionAnswers["AXPress"] = kAXErrorCannotComplete;
    EXPECT_THROW(minimizer.closeAllWindows(), MinimizeError);
    const BatchShape shape = batchShape(accessibility.log);
    ASSERT_EQ(shape.begins.size(), 1u);
    ASSERT_EQ(shape.ends.size(), 1u);
    EXPECT_EQ(shape.ends[0], accessibility.log.size() - 1);
    EXPECT_EQ(shape.requestsOutside, 0u);
    EXPECT_EQ(presses(), (std::vector<std::string>{"perform:Alpha1.close:AXPress", "perform:Alpha2.close:AXPress",
                                                   "perform:Beta1.close:AXPress"}));
}

TEST_F(WindowOperations, ASingleWindowRequestIsNotBatched)
{
    auto windows = appWithWindows(10, "Alpha", 1);
    EXPECT_TRUE(minimizer.minimize(windows[0]));
    EXPECT_TRUE(minimizer.close(windows[0]));
    EXPECT_TRUE(logEntriesStartingWith(accessibility.log, "batch:").empty());
}

TEST(MinimizeError, DescriptionCarriesTheCodeWithItsSign)
{
    EXPECT_EQ(MinimizeError::axFailure(-25204).errorDescription(), q("Accessibility call failed with code -25204."));
    EXPECT_EQ(MinimizeError::axFailure(-25200).errorDescription(), q("Accessibility call failed with code -25200."));
    EXPECT_EQ(MinimizeError::axFailure(7).errorDescription(), q("Accessibility call failed with code 7."));
    EXPECT_EQ(MinimizeError::axFailure(-25204).code(), -25204);
}

} // namespace
} // namespace stowly
