// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>

namespace stowly {

// Where the user grants or checks this program's access to other apps' windows: the
// Accessibility privacy pane of System Settings on macOS; on Linux X11 the settings
// program of the window manager (or desktop) when one is installed.
class AccessSettings {
public:
    virtual ~AccessSettings() = default;
    // What opens, as the settings window names it after "Open " ("System Settings");
    // absent when this desktop has nothing to open, and then nothing is offered.
    virtual std::optional<std::string> name() = 0;
    // Opens it; false when nothing could be opened. A failure is never shown.
    virtual bool open() = 0;
    // One sentence saying which windows stay out of reach even with access granted (a
    // Wayland compositor that shows this program only the apps running through Xwayland);
    // absent when every app's windows can be reached.
    virtual std::optional<std::string> limitation() { return std::nullopt; }
};

} // namespace stowly
