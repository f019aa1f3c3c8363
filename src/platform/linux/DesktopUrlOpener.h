// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/UrlOpener.h"

namespace stowly::linuxdesktop {

// Opens URLs with the desktop's handler (QDesktopServices), started with the limit on open
// descriptors Stowly was started with. Needs a QGuiApplication; without one it opens
// nothing and answers false.
class DesktopUrlOpener : public UrlOpener {
public:
    bool openUrl(const std::string& url) override;
};

} // namespace stowly::linuxdesktop
