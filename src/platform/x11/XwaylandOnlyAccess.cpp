// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "XwaylandOnlyAccess.h"

namespace stowly::x11 {

std::optional<std::string> XwaylandOnlyAccess::limitation()
{
    return std::string("Only apps running through Xwayland can be listed and acted on: this Wayland "
                       "desktop does not let Stowly see its other windows.");
}

} // namespace stowly::x11
