// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// A native Wayland test client for the KWin tests: one window with a known title, and on
// request a dialog (a transient child) or a window that refuses to close.
//   stowly_wltestwin --title T [--dialog] [--refuse-close] [--windows N]
// With --windows N it opens N windows titled "T 1" ... "T N" (for the benchmarks).
#include <QCloseEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

class TestWindow : public QRasterWindow {
public:
    bool refuseClose = false;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter(this).fillRect(QRect(QPoint(0, 0), size()), QColor(0x3a, 0x6e, 0xa5));
    }
    bool event(QEvent* e) override
    {
        // Qt on Wayland turns the compositor's close request into a Close event.
        if (e->type() == QEvent::Close && refuseClose) {
            std::fprintf(stderr, "refused close\n");
            e->ignore();
            return true;
        }
        return QRasterWindow::event(e);
    }
};

// Qt 6.4's Wayland display, when destroyed, waits for its event-reading thread, which can sit
// in wl_display_read_events for good (seen under load: the window closed, exec returned, and the
// process never ended). A test client must end when its window closes, so it skips Qt's teardown.
[[noreturn]] void endWithoutTeardown(int code)
{
    std::fflush(nullptr);
    std::_Exit(code);
}

} // namespace

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    QString title = QStringLiteral("stowly test window");
    bool withDialog = false;
    bool refuseClose = false;
    int windowCount = 1;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--title") == 0 && i + 1 < argc)
            title = QString::fromUtf8(argv[++i]);
        else if (std::strcmp(argv[i], "--dialog") == 0)
            withDialog = true;
        else if (std::strcmp(argv[i], "--refuse-close") == 0)
            refuseClose = true;
        else if (std::strcmp(argv[i], "--windows") == 0 && i + 1 < argc)
            windowCount = std::max(1, std::atoi(argv[++i]));
    }
    if (windowCount > 1) {
        std::vector<std::unique_ptr<TestWindow>> windows;
        for (int n = 1; n <= windowCount; ++n) {
            windows.push_back(std::make_unique<TestWindow>());
            windows.back()->setTitle(title + QStringLiteral(" %1").arg(n));
            windows.back()->resize(120, 80);
            windows.back()->show();
        }
        endWithoutTeardown(app.exec());
    }
    TestWindow window;
    window.refuseClose = refuseClose;
    window.setTitle(title);
    window.resize(240, 160);
    window.show();

    TestWindow dialog;
    if (withDialog) {
        dialog.setTitle(title + QStringLiteral(" dialog"));
        dialog.setTransientParent(&window);
        dialog.resize(160, 100);
        dialog.show();
    }
    endWithoutTeardown(app.exec());
}
