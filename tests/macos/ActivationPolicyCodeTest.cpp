// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "ActivationPolicyCode.h"

#include <gtest/gtest.h>

#include <climits>

namespace stowly::macos {
namespace {

TEST(ActivationPolicyCode, AppKitsThreePoliciesMapOneToOne)
{
    // NSApplicationActivationPolicyRegular, Accessory and Prohibited.
    EXPECT_EQ(activationPolicyFromCode(0), ActivationPolicy::regular);
    EXPECT_EQ(activationPolicyFromCode(1), ActivationPolicy::accessory);
    EXPECT_EQ(activationPolicyFromCode(2), ActivationPolicy::prohibited);
}

TEST(ActivationPolicyCode, AnUnknownPolicyIsNeverRegular)
{
    for (const long code : {3L, 7L, -1L, LONG_MIN, LONG_MAX})
        EXPECT_EQ(activationPolicyFromCode(code), ActivationPolicy::prohibited) << code;
}

} // namespace
} // namespace stowly::macos
