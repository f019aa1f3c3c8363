// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ActivationPolicyCode.h"

namespace stowly::macos {

ActivationPolicy activationPolicyFromCode(long code)
{
    switch (code) {
    case static_cast<long>(ActivationPolicy::regular): return ActivationPolicy::regular;
    case static_cast<long>(ActivationPolicy::accessory): return ActivationPolicy::accessory;
    default: return ActivationPolicy::prohibited;
    }
}

} // namespace stowly::macos
