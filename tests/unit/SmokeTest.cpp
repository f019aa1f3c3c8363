#include "AppModel.h"
#include "FakePlatform.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

using namespace stowly;

TEST(Smoke, ModelStartsTrustedWithReadyMessageAndMinimizesOneWindow)
{
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    fakes::FakePlatform fake;
    fake.trust.trusted = true;
    fake.workspace.addApp(10, "Notes");
    fake.accessibility.addWindow(10, "w1");
    fake.processTable.add(10, "notes", 4096);
    auto platform = fake.platform();
    AppModel model(platform);
    EXPECT_EQ(model.lastResultMessage(), "Ready to manage windows across open apps.");
    ASSERT_EQ(model.runningApps().size(), 1u);
    EXPECT_EQ(model.runningApps()[0].formattedRAM(), "4 KB");
    model.minimizeAllWindows();
    EXPECT_EQ(model.lastResultMessage(), "Minimized 1 window.");
    model.minimizeAllWindows();
    EXPECT_EQ(model.lastResultMessage(), "No minimizable windows were found.");
}
