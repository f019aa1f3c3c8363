// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "Observer.h"

#include <cstdlib>
#include <cstring>
#include <fstream>

namespace stowly::chaos {

namespace {

std::vector<std::uint32_t> longsOf(xcb_get_property_reply_t* reply, xcb_atom_t type)
{
    std::vector<std::uint32_t> out;
    if (reply == nullptr || reply->type != type || reply->format != 32)
        return out;
    const int length = xcb_get_property_value_length(reply);
    out.resize(static_cast<std::size_t>(length) / 4);
    if (!out.empty())
        std::memcpy(out.data(), xcb_get_property_value(reply), out.size() * 4);
    return out;
}

} // namespace

bool alive(int pid)
{
    if (pid <= 0)
        return false;
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text;
    if (!std::getline(stat, text))
        return false;
    const auto paren = text.rfind(')');
    return paren != std::string::npos && paren + 2 < text.size() && text[paren + 2] != 'Z' && text[paren + 2] != 'X';
}

std::string SeenWindow::describe() const
{
    return "window " + std::to_string(id) + " of pid " + std::to_string(pid) + (iconic ? ", iconic" : "") +
           (dialog ? ", dialog" : "") + (regularType ? "" : ", odd type") + (skipTaskbar ? ", skip-taskbar" : "") +
           (closable ? "" : ", not closable") +
           (transientFor != 0 ? ", transient for " + std::to_string(transientFor) : "");
}

std::set<int> Scene::managedPids(int self) const
{
    std::set<int> pids;
    for (const auto& [id, w] : windows)
        if (w.pid > 0 && w.pid != self && w.regularType && !w.skipTaskbar && alive(w.pid))
            pids.insert(w.pid);
    return pids;
}

std::vector<const SeenWindow*> Scene::windowsOf(int pid) const
{
    std::vector<const SeenWindow*> out;
    for (const auto& [id, w] : windows)
        if (w.pid == pid)
            out.push_back(&w);
    return out;
}

Observer::Observer(const std::string& display)
{
    m_c = xcb_connect(display.c_str(), nullptr);
    if (xcb_connection_has_error(m_c) != 0)
        return;
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_c)).data->root;
}

Observer::~Observer()
{
    if (m_c != nullptr)
        xcb_disconnect(m_c);
}

xcb_atom_t Observer::atom(const char* name)
{
    const auto it = m_atoms.find(name);
    if (it != m_atoms.end())
        return it->second;
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
        m_c, xcb_intern_atom(m_c, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t value = reply != nullptr ? reply->atom : XCB_NONE;
    std::free(reply);
    m_atoms[name] = value;
    return value;
}

Scene Observer::look()
{
    Scene scene;
    if (!ok())
        return scene;
    // 1,024 values suffice for any window's property; the client list of the scale run holds
    // thousands of windows.
    auto get = [&](xcb_window_t w, xcb_atom_t property, std::uint32_t longs = 1024) {
        return xcb_get_property(m_c, 0, w, property, XCB_GET_PROPERTY_TYPE_ANY, 0, longs);
    };
    auto reply = [&](xcb_get_property_cookie_t cookie) { return xcb_get_property_reply(m_c, cookie, nullptr); };

    xcb_get_property_reply_t* check = reply(get(m_root, atom("_NET_SUPPORTING_WM_CHECK")));
    const auto checkWindow = longsOf(check, XCB_ATOM_WINDOW);
    std::free(check);
    if (!checkWindow.empty()) {
        xcb_get_window_attributes_reply_t* attributes =
            xcb_get_window_attributes_reply(m_c, xcb_get_window_attributes(m_c, checkWindow[0]), nullptr);
        scene.windowManager = attributes != nullptr;
        std::free(attributes);
    }
    xcb_get_property_reply_t* list = reply(get(m_root, atom("_NET_CLIENT_LIST"), 1u << 16));
    const auto ids = longsOf(list, XCB_ATOM_WINDOW);
    std::free(list);

    const xcb_atom_t props[] = {atom("_NET_WM_PID"),         atom("WM_STATE"),      atom("_STOWLY_HIDDEN"),
                                atom("_NET_WM_WINDOW_TYPE"), atom("_NET_WM_STATE"), atom("WM_PROTOCOLS"),
                                XCB_ATOM_WM_TRANSIENT_FOR};
    constexpr std::size_t kProps = sizeof props / sizeof props[0];
    std::vector<xcb_get_property_cookie_t> cookies;
    for (const std::uint32_t id : ids)
        for (const xcb_atom_t p : props)
            cookies.push_back(get(id, p));
    for (std::size_t i = 0; i < ids.size(); ++i) {
        xcb_get_property_reply_t* r[kProps];
        for (std::size_t p = 0; p < kProps; ++p)
            r[p] = reply(cookies[i * kProps + p]);
        SeenWindow w;
        w.id = ids[i];
        const auto pid = longsOf(r[0], XCB_ATOM_CARDINAL);
        w.pid = pid.empty() ? 0 : static_cast<int>(pid[0]);
        const auto state = longsOf(r[1], atom("WM_STATE"));
        w.iconic = !state.empty() && state[0] == 3;
        w.hiddenMark = r[2] != nullptr && r[2]->format == 32 && !longsOf(r[2], r[2]->type).empty() &&
                       longsOf(r[2], r[2]->type)[0] != 0;
        const auto types = longsOf(r[3], XCB_ATOM_ATOM);
        const auto states = longsOf(r[4], XCB_ATOM_ATOM);
        const auto protocols = longsOf(r[5], XCB_ATOM_ATOM);
        const auto transientFor = longsOf(r[6], XCB_ATOM_WINDOW);
        const bool transient = !transientFor.empty();
        w.transientFor = transient ? transientFor[0] : 0;
        // The first type this desktop knows decides, as EWMH asks.
        xcb_atom_t type = XCB_NONE;
        for (const xcb_atom_t t : types) {
            for (const char* known :
                 {"_NET_WM_WINDOW_TYPE_NORMAL", "_NET_WM_WINDOW_TYPE_DIALOG", "_NET_WM_WINDOW_TYPE_UTILITY",
                  "_NET_WM_WINDOW_TYPE_TOOLBAR", "_NET_WM_WINDOW_TYPE_MENU", "_NET_WM_WINDOW_TYPE_SPLASH",
                  "_NET_WM_WINDOW_TYPE_DESKTOP", "_NET_WM_WINDOW_TYPE_DOCK"})
                if (t == atom(known))
                    type = t;
            if (type != XCB_NONE)
                break;
        }
        const xcb_atom_t dialogType = atom("_NET_WM_WINDOW_TYPE_DIALOG");
        w.dialog = type == dialogType || (type == XCB_NONE && transient);
        w.regularType = type == XCB_NONE || type == atom("_NET_WM_WINDOW_TYPE_NORMAL") || type == dialogType;
        for (const xcb_atom_t s : states) {
            if (s == atom("_NET_WM_STATE_SKIP_TASKBAR"))
                w.skipTaskbar = true;
            // Minimized means this too (EWMH): icewm hides a minimized window's group this way.
            if (s == atom("_NET_WM_STATE_HIDDEN"))
                w.iconic = true;
        }
        for (const xcb_atom_t p : protocols)
            if (p == atom("WM_DELETE_WINDOW"))
                w.closable = true;
        for (auto* each : r)
            std::free(each);
        scene.windows.emplace(w.id, w);
    }
    return scene;
}

bool Observer::exists(std::uint32_t window)
{
    if (!ok())
        return false;
    xcb_get_window_attributes_reply_t* attributes =
        xcb_get_window_attributes_reply(m_c, xcb_get_window_attributes(m_c, window), nullptr);
    const bool found = attributes != nullptr;
    std::free(attributes);
    return found;
}

void Observer::toggleSkipTaskbar(std::uint32_t window, bool on)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom("_NET_WM_STATE");
    event.data.data32[0] = on ? 1 : 0; // _NET_WM_STATE_ADD / _REMOVE
    event.data.data32[1] = atom("_NET_WM_STATE_SKIP_TASKBAR");
    event.data.data32[3] = 2;
    xcb_send_event(m_c, 0, m_root, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    std::free(xcb_get_input_focus_reply(m_c, xcb_get_input_focus(m_c), nullptr)); // a round trip
}

void Observer::setWindowType(std::uint32_t window, const std::string& typeSuffix)
{
    const xcb_atom_t type = atom(("_NET_WM_WINDOW_TYPE_" + typeSuffix).c_str());
    xcb_change_property(m_c, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &type);
    std::free(xcb_get_input_focus_reply(m_c, xcb_get_input_focus(m_c), nullptr));
}

} // namespace stowly::chaos
