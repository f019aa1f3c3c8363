// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include "WindowSnapshot.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace stowly::x11 {

// One GetProperty answer: its type, its format, and the value bytes that whole items of
// that format cover. Anything a client wrote is possible here; nothing in it is trusted.
struct PropertyValue {
    bool present = false; // the window has the property and its format is 8, 16 or 32
    xcb_atom_t type = XCB_NONE;
    std::uint8_t format = 0;
    std::string_view bytes;

    // Items of a 32-bit property (xcb hands them over in host order); empty otherwise.
    std::vector<std::uint32_t> longs() const;
};

// A raw answer checked against its declared format: a format other than 8, 16 or 32, a
// negative length or a type of None give an absent value; a tail shorter than one item
// is dropped.
PropertyValue checkedPropertyValue(xcb_atom_t type, int format, const void* data, int length);

// The properties a snapshot reads for each window, in the order their requests are sent.
enum WindowProperty {
    kPid,
    kType,
    kState,
    kWmState,
    kWmClass,
    kHidden,
    kTransient,
    kProtocols,
    kGtkId,
    kKdeFile,
    kNetName,
    kWmName,
    kWindowPropertyCount
};

// The atoms that tell property values apart, interned once per connection.
struct PropertyAtoms {
    xcb_atom_t utf8String = XCB_NONE;
    xcb_atom_t wmState = XCB_NONE;
    xcb_atom_t wmDeleteWindow = XCB_NONE;
};

using WindowPropertyValues = std::array<PropertyValue, kWindowPropertyCount>;
using WindowPropertyMask = std::array<bool, kWindowPropertyCount>;

// Sets what the `asked` properties say about a window; the rest of `w` stays as it was.
// The pid is taken from _NET_WM_PID only while `w.pid` is still unknown (0).
void interpretWindowProperties(ClientWindow& w, const WindowPropertyValues& values, const WindowPropertyMask& asked,
                               const PropertyAtoms& atoms);

} // namespace stowly::x11
