// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// A real AppModel on the fake platform, with the views the program shows, rendered
// offscreen. Tests script the fakes first, then build the model and open the views.

#include "AppModel.h"
#include "FakePlatform.h"
#include "NotifyingPreferenceStore.h"
#include "StowlyViews.h"

#include <QPointF>
#include <QQuickItem>
#include <QQuickView>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace stowly::testing {

class UiFixture {
public:
    UiFixture();
    ~UiFixture();

    fakes::FakePlatform fake;
    NotifyingPreferenceStore preferences{fake.preferences};
    Platform platform{fake.workspace,  fake.accessibility, fake.trust,  fake.processTable,
                      fake.loginItems, fake.urlOpener,     preferences, fake.accessSettings};

    // A regular app with one standard window and a process of the given footprint.
    fakes::FakeAppRef addApp(std::int32_t pid, const std::string& name, std::uint64_t footprint = 1 << 20);
    void setPreference(const std::string& key, const std::string& value) { fake.preferences.values[key] = value; }
    std::optional<std::string> preference(const std::string& key) const;

    // Builds the model (its first snapshot reads the fakes as scripted so far) and the views.
    void start();
    AppModel& model() { return *m_model; }
    StowlyViews& views() { return *m_views; }

    QQuickView& panel();    // shown and exposed
    QQuickView& settings(); // shown and exposed

    // Sets the application palette a light or a dark desktop gives; the caller restores it.
    // Set before start(), so that the views take their scheme from it.
    static void useDesktopScheme(bool dark);
    // Access not granted and three apps (one active, one hidden, one only open, of different
    // sizes); then start() and the panel, shown.
    QQuickView& startPanelOfThreeAppsWithoutAccess();

    static QQuickItem* find(QQuickView& view, const QString& objectName);
    static QQuickItem* findIn(QQuickItem* root, const QString& objectName);
    // Lets bindings and the scene settle.
    static void settle();
    // A left click at the item's centre (scrolls a settings item into view first).
    static void click(QQuickView& view, QQuickItem* item);
    static void click(QQuickView& view, QQuickItem* item, QPointF localPoint);

private:
    std::unique_ptr<AppModel> m_model;
    std::unique_ptr<StowlyViews> m_views;
    std::unique_ptr<QQuickView> m_panel;
    std::unique_ptr<QQuickView> m_settings;
};

} // namespace stowly::testing
