// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Times the panel's first open in a fresh process: from the moment the panel is asked for
// (what a tray click does the first time) to the first frame the window system received,
// split into loading the view (QML components) and showing it. Prints one line of
// milliseconds; scripts/bench-panel-open runs it several times and takes the medians.

#include "UiFixture.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQuickView>
#include <QTest>

#include <cstdio>
#include <memory>

int main(int argc, char* argv[])
{
    QGuiApplication application(argc, argv);
    stowly::testing::UiFixture ui;
    for (int i = 0; i < 8; ++i)
        ui.addApp(1000 + i, "App " + std::to_string(i));
    ui.start();

    QElapsedTimer clock;
    clock.start();
    std::unique_ptr<QQuickView> view(ui.views().createPanelView());
    const double loaded = double(clock.nsecsElapsed()) / 1e6;
    bool framed = false;
    QObject::connect(view.get(), &QQuickWindow::frameSwapped, view.get(), [&] { framed = true; });
    view->show();
    if (!QTest::qWaitFor([&] { return framed; }, 10000)) {
        std::fputs("the panel never drew a frame\n", stderr);
        return 1;
    }
    const double total = double(clock.nsecsElapsed()) / 1e6;
    std::printf("load %.2f ms, show to first frame %.2f ms, first open %.2f ms\n", loaded, total - loaded, total);
    return 0;
}
