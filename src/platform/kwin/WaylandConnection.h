// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// One client connection to a Wayland compositor, driven by Qt's event loop: events are read
// when the socket becomes readable, and requests are flushed before the loop goes to sleep.
#pragma once

#include <QObject>

#include <memory>
#include <string>

struct wl_display;
struct wl_registry;
class QSocketNotifier;

namespace stowly::kwin {

class WaylandConnection : public QObject {
    Q_OBJECT
public:
    // Connects to `socketName` (a name in XDG_RUNTIME_DIR or an absolute path); an empty name
    // means WAYLAND_DISPLAY. isConnected() tells whether it worked.
    explicit WaylandConnection(const std::string& socketName = {}, QObject* parent = nullptr);
    ~WaylandConnection() override;

    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    bool isConnected() const { return display_ != nullptr && !lost_; }
    wl_display* display() const { return display_; }

    // Sends what is queued and waits up to `timeoutMs` for the compositor to answer everything
    // sent so far, dispatching the events that arrive meanwhile. False when the compositor did
    // not answer in time or the connection is gone; never blocks longer than the timeout.
    bool roundtrip(int timeoutMs = 1000);

    // Sends queued requests now (they also go out before the event loop sleeps).
    void flush();

signals:
    // The compositor closed the connection or sent a protocol error; nothing more will arrive.
    void connectionLost();

private:
    void readAndDispatch();
    void dispatchPending();
    void markLostIfBroken();

    wl_display* display_ = nullptr;
    std::unique_ptr<QSocketNotifier> notifier_;
    bool lost_ = false;
};

} // namespace stowly::kwin
