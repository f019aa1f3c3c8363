// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "WaylandConnection.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>
#include <QSocketNotifier>

#include <cerrno>
#include <poll.h>
#include <wayland-client.h>

namespace stowly::kwin {

WaylandConnection::WaylandConnection(const std::string& socketName, QObject* parent) : QObject(parent)
{
    display_ = wl_display_connect(socketName.empty() ? nullptr : socketName.c_str());
    if (display_ == nullptr)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(wl_display_get_fd(display_), QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, &WaylandConnection::readAndDispatch);
    // Requests made anywhere in a loop iteration leave in one write, just before Qt sleeps.
    if (auto* dispatcher = QAbstractEventDispatcher::instance()) {
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
            dispatchPending();
            flush();
        });
    }
}

WaylandConnection::~WaylandConnection()
{
    notifier_.reset();
    if (display_ != nullptr)
        wl_display_disconnect(display_);
}

void WaylandConnection::flush()
{
    if (isConnected() && wl_display_flush(display_) < 0 && errno != EAGAIN)
        markLostIfBroken();
}

void WaylandConnection::dispatchPending()
{
    if (!isConnected())
        return;
    if (wl_display_dispatch_pending(display_) < 0)
        markLostIfBroken();
}

void WaylandConnection::readAndDispatch()
{
    if (!isConnected())
        return;
    while (wl_display_prepare_read(display_) != 0) {
        if (wl_display_dispatch_pending(display_) < 0) {
            markLostIfBroken();
            return;
        }
    }
    // The socket is readable, and libwayland reads without blocking.
    if (wl_display_read_events(display_) < 0) {
        markLostIfBroken();
        return;
    }
    dispatchPending();
}

bool WaylandConnection::roundtrip(int timeoutMs)
{
    if (!isConnected())
        return false;
    bool answered = false;
    static const wl_callback_listener doneListener{
        [](void* data, wl_callback*, uint32_t) { *static_cast<bool*>(data) = true; }};
    wl_callback* callback = wl_display_sync(display_);
    wl_callback_add_listener(callback, &doneListener, &answered);

    const QDeadlineTimer deadline(timeoutMs);
    const int fd = wl_display_get_fd(display_);
    while (!answered && isConnected()) {
        while (wl_display_prepare_read(display_) != 0) {
            if (wl_display_dispatch_pending(display_) < 0)
                break;
        }
        if (answered || wl_display_get_error(display_) != 0) {
            wl_display_cancel_read(display_);
            break;
        }
        const bool pendingWrite = wl_display_flush(display_) < 0 && errno == EAGAIN;
        pollfd descriptor{fd, static_cast<short>(POLLIN | (pendingWrite ? POLLOUT : 0)), 0};
        const int ready = poll(&descriptor, 1, static_cast<int>(deadline.remainingTime()));
        if (ready <= 0) {
            wl_display_cancel_read(display_);
            if (ready < 0 && errno == EINTR)
                continue;
            break; // timed out, or the descriptor failed
        }
        if ((descriptor.revents & POLLIN) != 0) {
            if (wl_display_read_events(display_) < 0)
                break;
        } else {
            wl_display_cancel_read(display_);
        }
        wl_display_dispatch_pending(display_);
        if (deadline.hasExpired())
            break;
    }
    // A late answer to a destroyed callback is dropped by libwayland, never delivered to
    // the stack variable above.
    wl_callback_destroy(callback);
    markLostIfBroken();
    return answered;
}

void WaylandConnection::markLostIfBroken()
{
    if (lost_ || display_ == nullptr || wl_display_get_error(display_) == 0)
        return;
    lost_ = true;
    if (notifier_)
        notifier_->setEnabled(false);
    emit connectionLost();
}

} // namespace stowly::kwin
