// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// KWin's window list and window requests (org_kde_plasma_window_management). KWin offers the
// global only to programs whose desktop entry grants it, so isGranted() is this platform's
// form of "may act on other apps' windows".
#pragma once

#include "PlasmaWindowInfo.h"

#include <QObject>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct org_kde_plasma_window;
struct org_kde_plasma_window_management;
struct wl_registry;

namespace stowly::kwin {

class WaylandConnection;

class PlasmaWindowManagement : public QObject {
    Q_OBJECT
public:
    // The oldest protocol version with window uuids, which the window list is keyed by.
    static constexpr std::uint32_t minimumVersion = 13;

    // Connects to `socketName` (empty: $WAYLAND_DISPLAY), looks for the global and, when it is
    // offered, binds it and waits (up to `timeoutMs`) until every window's initial state has
    // arrived.
    explicit PlasmaWindowManagement(std::string socketName = {}, int timeoutMs = 1000);
    ~PlasmaWindowManagement() override;

    // Drops the connection and opens a new one. KWin decides per connection whether to offer
    // the interface, so a grant written after we connected is seen only this way; so is a
    // compositor that came back.
    void reconnect();
    WaylandConnection& connection() { return *connection_; }

    // The compositor advertises the interface (at a version we can use) to this client.
    bool isAdvertised() const { return advertisedVersion_ >= minimumVersion; }
    // Bound and the connection is alive.
    bool isGranted() const;
    std::uint32_t boundVersion() const { return boundVersion_; }

    // Every mapped window whose initial state has arrived, in the order KWin announced them.
    std::vector<PlasmaWindowInfo> windows() const;

    // Requests; false when the window is unknown or the interface is not granted. Each is
    // sent at once; KWin applies it asynchronously, and the state comes back as an event.
    bool setMinimized(const std::string& uuid, bool minimized);
    bool activate(const std::string& uuid);
    bool close(const std::string& uuid);

    // Waits for the compositor to answer every request and event so far.
    bool sync(int timeoutMs = 1000);

signals:
    void windowsChanged();

private:
    struct Window;
    static void onGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                         std::uint32_t version);
    static void onGlobalRemove(void* data, wl_registry* registry, std::uint32_t name);
    static void onWindowAnnounced(void* data, org_kde_plasma_window_management* management, std::uint32_t id,
                                  const char* uuid);
    void connectAndBind();
    void disconnect();
    void addWindow(const char* uuid);
    void removeWindow(Window* window);
    Window* find(const std::string& uuid) const;
    Window* findProxy(org_kde_plasma_window* proxy) const;

    std::string socketName_;
    int timeoutMs_;
    std::unique_ptr<WaylandConnection> connection_;
    wl_registry* registry_ = nullptr;
    org_kde_plasma_window_management* management_ = nullptr;
    std::uint32_t globalName_ = 0;
    std::uint32_t advertisedVersion_ = 0;
    std::uint32_t boundVersion_ = 0;
    std::uint64_t nextSequence_ = 0;
    // Keyed by uuid; `sequence` keeps the announcement order for windows().
    std::map<std::string, std::unique_ptr<Window>> windows_;
};

} // namespace stowly::kwin
