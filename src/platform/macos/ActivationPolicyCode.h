// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Workspace.h"

namespace stowly::macos {

// The policy an NSRunningApplication reports, read from its raw NSInteger. Plain C++
// so that the rule is tested on every platform; MacWorkspace.mm asserts that AppKit's
// constants have the values this relies on.
//
// A value AppKit may add later maps to `prohibited`: an app of unknown kind is never
// counted as a regular app, so bulk actions leave it alone.
ActivationPolicy activationPolicyFromCode(long code);

} // namespace stowly::macos
