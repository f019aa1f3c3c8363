// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "WindowSnapshot.h"

#include "NetWmIcon.h"
#include "ThemedIcons.h"
#include "WindowProperties.h"

#include <xcb/res.h>
#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace stowly::x11 {

namespace {

constexpr std::uint32_t kMaxListLongs = 1u << 16; // client lists, atom lists
constexpr std::uint32_t kMaxTextLongs = 1u << 12; // 16 KiB of text is plenty
constexpr std::uint32_t kMaxIconLongs = 1u << 20; // 4 MiB: a 1024x1024 icon

// One GetProperty reply with its value checked against its declared format.
struct Property : PropertyValue {
    bool badWindow = false;
    xcb_get_property_reply_t* reply = nullptr;

    Property() = default;
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;
    ~Property() { std::free(reply); }
};

void collect(xcb_connection_t* c, xcb_get_property_cookie_t cookie, Property& out)
{
    xcb_generic_error_t* error = nullptr;
    out.reply = xcb_get_property_reply(c, cookie, &error);
    if (error != nullptr) {
        out.badWindow = error->error_code == XCB_WINDOW;
        std::free(error);
    }
    if (out.reply == nullptr)
        return;
    static_cast<PropertyValue&>(out) =
        checkedPropertyValue(out.reply->type, out.reply->format, xcb_get_property_value(out.reply),
                             xcb_get_property_value_length(out.reply));
}

xcb_get_property_cookie_t request(xcb_connection_t* c, xcb_window_t window, xcb_atom_t property, std::uint32_t maxLongs)
{
    return xcb_get_property_unchecked(c, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, maxLongs);
}

constexpr int kPropCount = kWindowPropertyCount;

// The atoms of the WindowProperty order.
std::array<xcb_atom_t, kPropCount> propertyAtoms(const XConnection& x)
{
    return {x.atom(Atom::NET_WM_PID),
            x.atom(Atom::NET_WM_WINDOW_TYPE),
            x.atom(Atom::NET_WM_STATE),
            x.atom(Atom::WM_STATE),
            XCB_ATOM_WM_CLASS,
            x.atom(Atom::STOWLY_HIDDEN),
            XCB_ATOM_WM_TRANSIENT_FOR,
            x.atom(Atom::WM_PROTOCOLS),
            x.atom(Atom::GTK_APPLICATION_ID),
            x.atom(Atom::KDE_NET_WM_DESKTOP_FILE),
            x.atom(Atom::NET_WM_NAME),
            XCB_ATOM_WM_NAME};
}

constexpr std::array<std::uint32_t, kPropCount> kPropLongs = {
    1, 64, 64, 2, kMaxTextLongs, 1, 1, 64, kMaxTextLongs, kMaxTextLongs, kMaxTextLongs, kMaxTextLongs};

struct WindowCookies {
    std::array<xcb_get_property_cookie_t, kPropCount> prop{};
    std::array<bool, kPropCount> asked{};
    xcb_get_property_cookie_t icon{};
    xcb_res_query_client_ids_cookie_t res{};
    bool askedRes = false;
    bool askedIcon = false;
};

// Whether a window's description taken at `serial` still holds in full.
bool unchangedSince(const XConnection& x, const ClientWindow& w, std::uint64_t serial)
{
    if (w.vanished)
        return false;
    if (!x.anyPropertyChangedSince(w.id, serial))
        return true;
    if (!x.isWatched(w.id))
        return false;
    for (const xcb_atom_t atom : propertyAtoms(x))
        if (x.propertyChangedSince(w.id, atom, serial))
            return false;
    return true;
}

} // namespace

bool ClientWindow::hasState(xcb_atom_t atom) const
{
    return std::find(states.begin(), states.end(), atom) != states.end();
}

bool ClientWindow::isMinimized(const XConnection& x) const
{
    return iconicByWmState || hasState(x.atom(Atom::NET_WM_STATE_HIDDEN));
}

AppIconRef IconCache::get(xcb_window_t window) const
{
    const auto it = m_icons.find(window);
    return it == m_icons.end() ? nullptr : it->second;
}

void IconCache::keepOnly(const std::vector<ClientWindow>& windows)
{
    std::unordered_map<xcb_window_t, AppIconRef> kept;
    for (const ClientWindow& w : windows) {
        const auto it = m_icons.find(w.id);
        if (it != m_icons.end())
            kept.emplace(it->first, it->second);
    }
    m_icons.swap(kept);
}

std::shared_ptr<const WindowSnapshot> takeWindowSnapshot(XConnection& x, IconCache* icons)
{
    auto snapshot = std::make_shared<WindowSnapshot>();
    snapshot->takenAt = std::chrono::steady_clock::now();
    if (!x.ensureConnected())
        return snapshot;
    x.drainEvents();
    xcb_connection_t* c = x.get();
    snapshot->generation = x.generation();
    // Events handled from here on may describe changes after the root's lists were read.
    snapshot->listSerial = x.eventSerial();
    const auto atoms = propertyAtoms(x);
    const PropertyAtoms knownAtoms{x.atom(Atom::UTF8_STRING), x.atom(Atom::WM_STATE), x.atom(Atom::WM_DELETE_WINDOW)};

    // A window the previous snapshot of this connection described, that we have watched
    // ever since, keeps that description except for the properties that changed since;
    // only those are read again. Everything is read for the others.
    const auto base = x.latestSnapshot();
    const bool haveBase = base && base->connected && base->generation == x.generation();

    // Asks for what a window's description needs: everything, or (with `previous`) what
    // changed since the base snapshot.
    auto ask = [&](ClientWindow& w, WindowCookies& k, const ClientWindow* previous) {
        // Where the pid came from (X-Resource or _NET_WM_PID) is not kept: a changed
        // _NET_WM_PID means reading the window afresh.
        const bool changed = previous == nullptr || x.anyPropertyChangedSince(w.id, base->serial);
        const bool incremental =
            previous != nullptr && (!changed || !x.propertyChangedSince(w.id, atoms[kPid], base->serial));
        if (incremental) {
            w = *previous;
        } else if (x.hasResourceExtension()) {
            const xcb_res_client_id_spec_t spec{w.id, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
            k.res = xcb_res_query_client_ids_unchecked(c, 1, &spec);
            k.askedRes = true;
        }
        for (int p = 0; p < kPropCount; ++p)
            k.asked[p] = !incremental || (changed && x.propertyChangedSince(w.id, atoms[p], base->serial));
        // The title is one of the two names: both are read whenever either changed.
        k.asked[kNetName] = k.asked[kWmName] = k.asked[kNetName] || k.asked[kWmName];
        for (int p = 0; p < kPropCount; ++p)
            if (k.asked[p])
                k.prop[p] = request(c, w.id, atoms[p], kPropLongs[p]);
        if (icons != nullptr && !icons->contains(w.id)) {
            k.icon = request(c, w.id, x.atom(Atom::NET_WM_ICON), kMaxIconLongs);
            k.askedIcon = true;
        }
    };

    // Stage 1: what the window manager lists, and with it the reads of every window the
    // base snapshot described: the list rarely changes, so one round trip usually does.
    const auto listCookie = request(c, x.root(), x.atom(Atom::NET_CLIENT_LIST), kMaxListLongs);
    const auto stackCookie = request(c, x.root(), x.atom(Atom::NET_CLIENT_LIST_STACKING), kMaxListLongs);
    const auto activeCookie = request(c, x.root(), x.atom(Atom::NET_ACTIVE_WINDOW), 1);
    struct Early {
        ClientWindow window;
        WindowCookies cookies;
        bool listed = false;
    };
    std::vector<Early> early;
    std::unordered_map<xcb_window_t, std::size_t> earlyIndex;
    if (haveBase) {
        early.reserve(base->windows.size());
        for (const ClientWindow& w : base->windows) {
            // Watched since the base was read: every change since then has been reported.
            if (w.vanished || !x.isWatched(w.id) || !earlyIndex.emplace(w.id, early.size()).second)
                continue;
            early.emplace_back();
            early.back().window.id = w.id;
            ask(early.back().window, early.back().cookies, &w);
        }
    }
    Property list, stack, active;
    collect(c, listCookie, list);
    collect(c, stackCookie, stack);
    collect(c, activeCookie, active);
    x.countRoundTrip();
    if (!x.isConnected())
        return snapshot;
    snapshot->connected = true;
    if (stack.type == XCB_ATOM_WINDOW)
        snapshot->stacking = stack.longs();
    if (active.type == XCB_ATOM_WINDOW && !active.longs().empty())
        snapshot->activeWindow = active.longs().front();

    // Stage 2, only for windows the base did not describe: their event selections go
    // first, so that any change after our reads is reported to us, then their reads.
    // No event is handled between the reads above and the serial taken below, so every
    // change reported later counts as after this snapshot.
    std::vector<WindowCookies> cookies;
    bool lateReads = false;
    if (list.type == XCB_ATOM_WINDOW) {
        const auto ids = list.longs();
        snapshot->windows.reserve(ids.size());
        cookies.reserve(ids.size());
        // EWMH lists each window once; a window manager that repeats one (openbox keeps
        // stale entries now and then) must not make a walk act on it twice.
        std::unordered_set<xcb_window_t> seen;
        seen.reserve(ids.size());
        for (const std::uint32_t id : ids) {
            if (id == XCB_NONE || !seen.insert(id).second)
                continue;
            const auto found = earlyIndex.find(id);
            if (found != earlyIndex.end() && !early[found->second].listed) {
                Early& e = early[found->second];
                e.listed = true;
                snapshot->windows.push_back(std::move(e.window));
                cookies.push_back(e.cookies);
            } else {
                x.watchWindow(id);
                snapshot->windows.emplace_back();
                snapshot->windows.back().id = id;
                cookies.emplace_back();
                ask(snapshot->windows.back(), cookies.back(), nullptr);
                lateReads = true;
            }
        }
    }
    snapshot->serial = x.eventSerial();
    if (lateReads)
        xcb_flush(c);

    for (std::size_t i = 0; i < snapshot->windows.size(); ++i) {
        ClientWindow& w = snapshot->windows[i];
        WindowCookies& k = cookies[i];
        if (k.askedRes) {
            xcb_generic_error_t* error = nullptr;
            xcb_res_query_client_ids_reply_t* reply = xcb_res_query_client_ids_reply(c, k.res, &error);
            if (reply != nullptr) {
                for (auto it = xcb_res_query_client_ids_ids_iterator(reply); it.rem > 0;
                     xcb_res_client_id_value_next(&it)) {
                    if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
                        xcb_res_client_id_value_value_length(it.data) >= 1) {
                        const std::uint32_t pid = *xcb_res_client_id_value_value(it.data);
                        if (pid > 0 && pid <= 0x7fffffff)
                            w.pid = static_cast<std::int32_t>(pid);
                    }
                }
            }
            std::free(reply);
            std::free(error);
        }
        std::array<Property, kPropCount> props;
        for (int p = 0; p < kPropCount; ++p)
            if (k.asked[p])
                collect(c, k.prop[p], props[p]);
        WindowPropertyValues values;
        for (int p = 0; p < kPropCount; ++p) {
            values[p] = props[p];
            if (props[p].badWindow)
                w.vanished = true;
        }
        interpretWindowProperties(w, values, k.asked, knownAtoms);

        if (k.askedIcon) {
            Property icon;
            collect(c, k.icon, icon);
            AppIconRef decoded;
            if (icon.type == XCB_ATOM_CARDINAL && icon.format == 32) {
                const auto values = icon.longs();
                decoded = decodeNetWmIcon(values.data(), values.size(), linuxdesktop::kWantedIconSize);
            }
            if (!icon.badWindow)
                icons->put(w.id, decoded);
        }
        if (icons != nullptr)
            w.icon = icons->get(w.id);
    }
    // Windows read early that have left the list meanwhile: their replies are dropped.
    for (Early& e : early) {
        if (e.listed)
            continue;
        WindowCookies& k = e.cookies;
        if (k.askedRes)
            xcb_discard_reply(c, k.res.sequence);
        for (int p = 0; p < kPropCount; ++p)
            if (k.asked[p])
                xcb_discard_reply(c, k.prop[p].sequence);
        if (k.askedIcon)
            xcb_discard_reply(c, k.icon.sequence);
    }
    if (lateReads)
        x.countRoundTrip();
    if (icons != nullptr)
        icons->keepOnly(snapshot->windows);
    if (!x.isConnected()) {
        snapshot->connected = false;
        return snapshot;
    }
    std::vector<xcb_window_t> listed;
    listed.reserve(snapshot->windows.size());
    for (const ClientWindow& w : snapshot->windows)
        listed.push_back(w.id);
    x.forgetWindowsExcept(listed);
    snapshot->withIcons = icons != nullptr;
    x.setLatestSnapshot(snapshot);
    return snapshot;
}

std::shared_ptr<const WindowSnapshot> currentWindowSnapshot(XConnection& x, IconCache& icons)
{
    if (x.ensureConnected()) {
        x.drainEvents(); // also notices a server that went away
        auto latest = x.latestSnapshot();
        if (x.isConnected() && latest && latest->connected && latest->withIcons &&
            latest->generation == x.generation() && !x.clientListChangedSince(latest->listSerial) &&
            !x.rootStateChangedSince(latest->listSerial) &&
            std::none_of(latest->windows.begin(), latest->windows.end(),
                         [&](const ClientWindow& w) { return !unchangedSince(x, w, latest->serial); }))
            return latest;
    }
    return takeWindowSnapshot(x, &icons);
}

std::shared_ptr<const WindowSnapshot> windowSnapshotFor(XConnection& x, std::int32_t pid)
{
    if (x.ensureConnected()) {
        x.drainEventsOlderThan(kWalkStepFreshness); // also notices a server that went away
        auto latest = x.latestSnapshot();
        if (x.isConnected() && latest && latest->connected && latest->generation == x.generation() &&
            !x.clientListChangedSince(latest->listSerial)) {
            const bool unchanged =
                std::none_of(latest->windows.begin(), latest->windows.end(), [&](const ClientWindow& w) {
                    return w.pid == pid && !unchangedSince(x, w, latest->serial);
                });
            if (unchanged)
                return latest;
        }
    }
    return takeWindowSnapshot(x, nullptr);
}

} // namespace stowly::x11
