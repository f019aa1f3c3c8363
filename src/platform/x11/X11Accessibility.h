// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "WindowAccessibility.h"
#include "WindowRequests.h"
#include "WindowSnapshot.h"
#include "XConnection.h"

#include <optional>

namespace stowly::x11 {

// Accessibility elements over EWMH client windows. Reading "AXWindows" reads every
// property the window attributes need in the same batch, so the per-window reads that
// follow answer from memory; only changes go to the server.
class X11Accessibility : public linuxdesktop::WindowAccessibility {
public:
    explicit X11Accessibility(XConnection& x) : m_x(x) {}

    // Within a batch the requests to windows known to exist stay in xcb's buffer and go
    // out in one write when the outermost batch ends.
    void beginRequestBatch() override;
    void endRequestBatch() override;

protected:
    AXError windowsOf(std::int32_t pid, AXElementList& windows) override;
    AXError usable(const Window& window) override;
    AXError usable(const CloseButton& button) override;
    std::string subroleOf(const Window& window) override;
    bool isMinimized(const Window& window) override;
    std::optional<std::string> titleOf(const Window& window) override;
    AXElementRef closeButtonOf(const Window& window) override;
    AXError setMinimized(const Window& window, bool minimized) override;
    AXError press(const CloseButton& button) override;

private:
    Delivery delivery() const { return m_batchDepth > 0 ? Delivery::batched : Delivery::now; }

    XConnection& m_x;
    int m_batchDepth = 0;
};

// Trusted means: connected to an X server on which an EWMH window manager runs and
// publishes its client list. There is nothing to prompt for.
class X11AccessibilityTrust : public AccessibilityTrust {
public:
    explicit X11AccessibilityTrust(XConnection& x) : m_x(x) {}
    // Asked once a second: a yes is kept, without a round trip, while the window
    // manager's check window is watched and nothing it announces has changed.
    bool isProcessTrusted(bool prompt) override;

private:
    bool askServer();

    XConnection& m_x;
    std::optional<std::uint64_t> m_trustedSince; // event serial of the last yes
    std::uint64_t m_trustedGeneration = 0;
};

} // namespace stowly::x11
