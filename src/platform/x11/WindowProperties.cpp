// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "WindowProperties.h"

#include "TextUtil.h"

#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <cstring>

namespace stowly::x11 {

namespace {

std::optional<std::string> textOf(const PropertyValue& p, const PropertyAtoms& atoms)
{
    if (!p.present || p.format != 8)
        return std::nullopt;
    std::string_view text = p.bytes;
    // Some clients include the terminating NUL.
    while (!text.empty() && text.back() == '\0')
        text.remove_suffix(1);
    if (p.type == atoms.utf8String)
        return linuxdesktop::sanitizeUtf8(text);
    return linuxdesktop::latin1OrUtf8ToUtf8(text);
}

} // namespace

std::vector<std::uint32_t> PropertyValue::longs() const
{
    std::vector<std::uint32_t> out;
    if (!present || format != 32)
        return out;
    out.resize(bytes.size() / 4);
    if (!out.empty())
        std::memcpy(out.data(), bytes.data(), out.size() * 4);
    return out;
}

PropertyValue checkedPropertyValue(xcb_atom_t type, int format, const void* data, int length)
{
    PropertyValue out;
    if (type == XCB_NONE || length < 0 || (format != 8 && format != 16 && format != 32) ||
        (data == nullptr && length > 0))
        return out;
    const std::size_t unit = static_cast<std::size_t>(format) / 8;
    const std::size_t usable = static_cast<std::size_t>(length) - static_cast<std::size_t>(length) % unit;
    out.present = true;
    out.type = type;
    out.format = static_cast<std::uint8_t>(format);
    if (usable > 0)
        out.bytes = std::string_view(static_cast<const char*>(data), usable);
    return out;
}

void interpretWindowProperties(ClientWindow& w, const WindowPropertyValues& props, const WindowPropertyMask& asked,
                               const PropertyAtoms& atoms)
{
    const PropertyValue& pid = props[kPid];
    const PropertyValue& type = props[kType];
    const PropertyValue& state = props[kState];
    const PropertyValue& wmState = props[kWmState];
    const PropertyValue& wmClass = props[kWmClass];
    const PropertyValue& hidden = props[kHidden];
    const PropertyValue& transient = props[kTransient];
    const PropertyValue& protocols = props[kProtocols];

    if (asked[kPid] && w.pid == 0 && pid.type == XCB_ATOM_CARDINAL) {
        const auto values = pid.longs();
        if (!values.empty() && values.front() > 0 && values.front() <= 0x7fffffff)
            w.pid = static_cast<std::int32_t>(values.front());
    }
    if (asked[kType])
        w.types = type.type == XCB_ATOM_ATOM ? type.longs() : std::vector<xcb_atom_t>{};
    if (asked[kState])
        w.states = state.type == XCB_ATOM_ATOM ? state.longs() : std::vector<xcb_atom_t>{};
    if (asked[kWmState]) {
        w.iconicByWmState = false;
        if (wmState.type == atoms.wmState) {
            const auto values = wmState.longs();
            w.iconicByWmState = !values.empty() && values.front() == XCB_ICCCM_WM_STATE_ICONIC;
        }
    }
    if (asked[kWmClass]) {
        w.wmClassInstance.reset();
        w.wmClassClass.reset();
        if (wmClass.present && wmClass.format == 8) {
            // Two NUL-terminated strings: instance, then class.
            const std::string_view all = wmClass.bytes;
            const std::size_t split = all.find('\0');
            w.wmClassInstance = linuxdesktop::latin1OrUtf8ToUtf8(all.substr(0, split));
            if (split != std::string_view::npos) {
                std::string_view rest = all.substr(split + 1);
                rest = rest.substr(0, rest.find('\0'));
                if (!rest.empty())
                    w.wmClassClass = linuxdesktop::latin1OrUtf8ToUtf8(rest);
            }
            if (w.wmClassInstance->empty())
                w.wmClassInstance.reset();
        }
    }
    if (asked[kHidden])
        w.stowlyHidden =
            hidden.present && hidden.format == 32 && !hidden.longs().empty() && hidden.longs().front() != 0;
    if (asked[kTransient])
        w.transient = transient.type == XCB_ATOM_WINDOW && !transient.longs().empty();
    if (asked[kProtocols]) {
        w.supportsDelete = false;
        if (protocols.type == XCB_ATOM_ATOM) {
            const auto values = protocols.longs();
            w.supportsDelete = std::find(values.begin(), values.end(), atoms.wmDeleteWindow) != values.end();
        }
    }
    if (asked[kGtkId])
        w.gtkApplicationId = textOf(props[kGtkId], atoms);
    if (asked[kKdeFile])
        w.kdeDesktopFile = textOf(props[kKdeFile], atoms);
    if (asked[kNetName]) {
        w.title = textOf(props[kNetName], atoms);
        if (!w.title)
            w.title = textOf(props[kWmName], atoms);
    }
}

} // namespace stowly::x11
