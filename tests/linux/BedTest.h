// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "TestBed.h"
#include "X11Platform.h"
#include "platform/Platform.h"

#include <gtest/gtest.h>

namespace stowly::testbed {

Display& sharedDisplay(); // the display every test of this program shares (main.cpp)

// A test against the shared display: the X11 backend on it, and the apps the test starts
// (ended with the test).
class BedTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(sharedDisplay().ok()); }
    x11::X11Platform linux_;
    Platform& p = linux_.platform();
    Apps apps;
};

} // namespace stowly::testbed
