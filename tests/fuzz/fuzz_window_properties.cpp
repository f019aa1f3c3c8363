// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// A client window's properties with any type, format and length: what the snapshot takes
// from them must stay well formed (valid UTF-8 text, pids in range), whatever was sent.
// Input: per property, one type byte, one format byte, a 16-bit length, then the bytes.

#include "FuzzCheck.h"
#include "TextUtil.h"
#include "WindowProperties.h"

#include <xcb/xcb.h>

#include <cstring>

using namespace stowly::x11;

namespace {

constexpr xcb_atom_t kUtf8Atom = 300;
constexpr xcb_atom_t kWmStateAtom = 301;
constexpr xcb_atom_t kWmDeleteAtom = 302;

xcb_atom_t typeFor(std::uint8_t selector)
{
    static const xcb_atom_t types[] = {XCB_NONE,        XCB_ATOM_CARDINAL, XCB_ATOM_ATOM, XCB_ATOM_WINDOW,
                                       XCB_ATOM_STRING, kUtf8Atom,         kWmStateAtom,  XCB_ATOM_INTEGER};
    return selector < sizeof types / sizeof types[0] ? types[selector] : selector;
}

void checkText(const std::optional<std::string>& text)
{
    if (text)
        STOWLY_FUZZ_CHECK(stowly::linuxdesktop::isValidUtf8(*text));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    WindowPropertyValues values;
    WindowPropertyMask asked{};
    std::size_t at = 0;
    for (int p = 0; p < kWindowPropertyCount && at + 4 <= size; ++p) {
        const xcb_atom_t type = typeFor(data[at]);
        const int format = data[at + 1];
        std::size_t length = static_cast<std::size_t>(data[at + 2]) | static_cast<std::size_t>(data[at + 3]) << 8;
        at += 4;
        length = std::min(length, size - at);
        const int unit = format == 16 ? 2 : format == 32 ? 4 : 1;
        // xcb reports the length in items of the format.
        values[p] = checkedPropertyValue(type, format, data + at, static_cast<int>(length) / unit * unit);
        STOWLY_FUZZ_CHECK(values[p].bytes.size() <= length);
        if (values[p].present)
            STOWLY_FUZZ_CHECK(values[p].bytes.size() % (values[p].format / 8) == 0);
        asked[p] = true;
        at += length;
    }
    ClientWindow w;
    interpretWindowProperties(w, values, asked, PropertyAtoms{kUtf8Atom, kWmStateAtom, kWmDeleteAtom});
    STOWLY_FUZZ_CHECK(w.pid >= 0);
    checkText(w.wmClassInstance);
    checkText(w.wmClassClass);
    checkText(w.gtkApplicationId);
    checkText(w.kdeDesktopFile);
    checkText(w.title);
    if (w.wmClassInstance)
        STOWLY_FUZZ_CHECK(!w.wmClassInstance->empty());
    // A second look with the pid known keeps it: X-Resource answers first.
    ClientWindow known;
    known.pid = 42;
    interpretWindowProperties(known, values, asked, PropertyAtoms{kUtf8Atom, kWmStateAtom, kWmDeleteAtom});
    STOWLY_FUZZ_CHECK(known.pid == 42);
    return 0;
}
