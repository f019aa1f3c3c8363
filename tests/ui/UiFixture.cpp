// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "UiFixture.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPalette>
#include <QStyleHints>
#include <QTest>

namespace stowly::testing {

UiFixture::UiFixture() = default;

UiFixture::~UiFixture()
{
    // Views before the engine, the engine before the model.
    m_settings.reset();
    m_panel.reset();
    m_views.reset();
    m_model.reset();
}

fakes::FakeAppRef UiFixture::addApp(std::int32_t pid, const std::string& name, std::uint64_t footprint)
{
    fakes::FakeAppRef app = fake.workspace.addApp(pid, name);
    app->bundleId = "org.example." + std::to_string(pid);
    fake.accessibility.addWindow(pid, name + " window");
    fake.processTable.add(pid, name, footprint);
    return app;
}

std::optional<std::string> UiFixture::preference(const std::string& key) const
{
    auto found = fake.preferences.values.find(key);
    if (found == fake.preferences.values.end())
        return std::nullopt;
    return found->second;
}

void UiFixture::start()
{
    m_model = std::make_unique<AppModel>(platform);
    m_views = std::make_unique<StowlyViews>(*m_model, preferences);
}

void UiFixture::useDesktopScheme(bool dark)
{
    QPalette desktop;
    desktop.setColor(QPalette::Window, dark ? QColor(0x2a, 0x2a, 0x2a) : QColor(0xef, 0xef, 0xef));
    desktop.setColor(QPalette::WindowText, dark ? QColor(0xee, 0xee, 0xee) : QColor(0x10, 0x10, 0x10));
    QGuiApplication::setPalette(desktop);
}

QQuickView& UiFixture::startPanelOfThreeAppsWithoutAccess()
{
    fake.trust.trusted = false;
    addApp(101, "Terminal", 48ull << 20)->active = true;
    addApp(102, "Notes", 3ull << 30)->hidden = true;
    addApp(103, "Mail", 212ull << 20);
    start();
    return panel();
}

QQuickView& UiFixture::panel()
{
    if (!m_panel) {
        m_panel.reset(m_views->createPanelView());
        m_panel->show();
        if (!QTest::qWaitForWindowExposed(m_panel.get()))
            qWarning("panel view was never exposed");
    }
    settle();
    return *m_panel;
}

QQuickView& UiFixture::settings()
{
    if (!m_settings) {
        m_settings.reset(m_views->createSettingsView());
        m_settings->show();
        if (!QTest::qWaitForWindowExposed(m_settings.get()))
            qWarning("settings view was never exposed");
    }
    settle();
    return *m_settings;
}

QQuickItem* UiFixture::find(QQuickView& view, const QString& objectName)
{
    return findIn(view.rootObject(), objectName);
}

QQuickItem* UiFixture::findIn(QQuickItem* root, const QString& objectName)
{
    if (!root)
        return nullptr;
    if (root->objectName() == objectName)
        return root;
    // Visual children first (delegates and repeated items), then object children.
    for (QQuickItem* child : root->childItems()) {
        if (QQuickItem* found = findIn(child, objectName))
            return found;
    }
    return root->findChild<QQuickItem*>(objectName);
}

void UiFixture::settle()
{
    // A few event-loop turns: bindings, then positioners (laid out on the next frame).
    for (int round = 0; round < 3; ++round) {
        QTest::qWait(10);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void UiFixture::click(QQuickView& view, QQuickItem* item)
{
    click(view, item, QPointF(item->width() / 2, item->height() / 2));
}

void UiFixture::click(QQuickView& view, QQuickItem* item, QPointF localPoint)
{
    // An item below the fold of the settings window's scroller is scrolled into view.
    if (QQuickItem* scroller = find(view, QStringLiteral("settingsScroller"))) {
        const QPointF inScene = item->mapToScene(localPoint);
        if (inScene.y() < 0 || inScene.y() >= view.height()) {
            const qreal contentY = scroller->property("contentY").toReal();
            scroller->setProperty("contentY", std::max<qreal>(0, contentY + inScene.y() - view.height() / 2));
            settle();
        }
    }
    const QPoint point = item->mapToScene(localPoint).toPoint();
    // The press is stamped a double-click interval after the last one, so that two clicks
    // in a row stay two clicks.
    const int apart = QGuiApplication::styleHints()->mouseDoubleClickInterval() + 1;
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, point, apart);
    settle();
}

} // namespace stowly::testing
