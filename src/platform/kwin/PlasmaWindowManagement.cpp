// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "PlasmaWindowManagement.h"

#include "IconPipeReader.h"
#include "SerializedIcon.h"
#include "ThemedIcons.h"
#include "WaylandConnection.h"

#include "plasma-window-management-client.h"

#include <algorithm>
#include <cstring>
#include <wayland-client.h>

namespace stowly::kwin {

namespace {
// Version 16 is what the protocol file we build against describes (KWin 5.27).
constexpr std::uint32_t newestKnownVersion = 16;
// A window icon is a few PNG images; anything past this is not one.
constexpr int kIconByteLimit = 8 * 1024 * 1024;

std::string text(const char* value)
{
    return value != nullptr ? std::string(value) : std::string();
}
} // namespace

struct PlasmaWindowManagement::Window {
    PlasmaWindowManagement* owner = nullptr;
    org_kde_plasma_window* proxy = nullptr;
    org_kde_plasma_window* parentProxy = nullptr;
    std::uint64_t sequence = 0;
    bool ready = false; // initial_state has arrived
    PlasmaWindowInfo info;
    std::unique_ptr<IconPipeReader> iconReader; // the icon being read, or the last one read

    ~Window()
    {
        if (proxy != nullptr)
            org_kde_plasma_window_destroy(proxy);
    }

    static Window* from(void* data) { return static_cast<Window*>(data); }
    void readIcon();
    void changed()
    {
        if (ready)
            emit owner->windowsChanged();
    }

    static const org_kde_plasma_window_listener listener;
    static const org_kde_plasma_window_management_listener managementListener;
};

// Every event needs a handler: libwayland calls the slot without checking it.
const org_kde_plasma_window_listener PlasmaWindowManagement::Window::listener{
    .title_changed = [](void* data, org_kde_plasma_window*,
                        const char* title) { from(data)->info.title = text(title), from(data)->changed(); },
    .app_id_changed = [](void* data, org_kde_plasma_window*,
                         const char* appId) { from(data)->info.appId = text(appId), from(data)->changed(); },
    .state_changed = [](void* data, org_kde_plasma_window*,
                        std::uint32_t flags) { from(data)->info.state = flags, from(data)->changed(); },
    .virtual_desktop_changed = [](void*, org_kde_plasma_window*, std::int32_t) {},
    .themed_icon_name_changed =
        [](void* data, org_kde_plasma_window*, const char* name) {
            from(data)->info.themedIconName = text(name);
            from(data)->changed();
        },
    .unmapped = [](void* data, org_kde_plasma_window*) { from(data)->owner->removeWindow(from(data)); },
    .initial_state =
        [](void* data, org_kde_plasma_window*) {
            from(data)->ready = true;
            from(data)->changed();
        },
    .parent_window =
        [](void* data, org_kde_plasma_window*, org_kde_plasma_window* parent) {
            Window* window = from(data);
            window->parentProxy = parent;
            const Window* parentWindow = parent != nullptr ? window->owner->findProxy(parent) : nullptr;
            window->info.parentUuid = parentWindow != nullptr ? parentWindow->info.uuid : std::string();
            window->changed();
        },
    .geometry = [](void*, org_kde_plasma_window*, std::int32_t, std::int32_t, std::uint32_t, std::uint32_t) {},
    .icon_changed = [](void* data, org_kde_plasma_window*) { from(data)->readIcon(); },
    .pid_changed =
        [](void* data, org_kde_plasma_window*, std::uint32_t pid) {
            // A pid beyond the signed range is no process of ours to name.
            from(data)->info.pid = pid <= 0x7fffffffu ? static_cast<std::int32_t>(pid) : 0;
            from(data)->changed();
        },
    .virtual_desktop_entered = [](void*, org_kde_plasma_window*, const char*) {},
    .virtual_desktop_left = [](void*, org_kde_plasma_window*, const char*) {},
    .application_menu = [](void*, org_kde_plasma_window*, const char*, const char*) {},
    .activity_entered = [](void*, org_kde_plasma_window*, const char*) {},
    .activity_left = [](void*, org_kde_plasma_window*, const char*) {},
    .resource_name_changed =
        [](void* data, org_kde_plasma_window*, const char* name) {
            from(data)->info.resourceName = text(name);
            from(data)->changed();
        },
};

const org_kde_plasma_window_management_listener PlasmaWindowManagement::Window::managementListener{
    .show_desktop_changed = [](void*, org_kde_plasma_window_management*, std::uint32_t) {},
    // The id-only announcement predates uuids; window_with_uuid follows it for the same window.
    .window = [](void*, org_kde_plasma_window_management*, std::uint32_t) {},
    .stacking_order_changed = [](void*, org_kde_plasma_window_management*, wl_array*) {},
    .stacking_order_uuid_changed = [](void*, org_kde_plasma_window_management*, const char*) {},
    .window_with_uuid = &PlasmaWindowManagement::onWindowAnnounced,
};

// KWin writes the icon into the pipe from a worker thread and then closes it; we read it as it
// comes, on the event loop. A newer icon replaces a read still under way.
void PlasmaWindowManagement::Window::readIcon()
{
    iconReader = std::make_unique<IconPipeReader>(kIconByteLimit, [this](const QByteArray& bytes) {
        info.icon = decodeSerializedIcon(bytes, linuxdesktop::kWantedIconSize);
        // Told on the next turn of the loop: a listener may drop this window (and its reader).
        if (ready)
            QMetaObject::invokeMethod(owner, &PlasmaWindowManagement::windowsChanged, Qt::QueuedConnection);
    });
    if (iconReader->writeEnd() < 0) {
        iconReader.reset();
        return;
    }
    org_kde_plasma_window_get_icon(proxy, iconReader->writeEnd());
    owner->connection_->flush();
    iconReader->closeWriteEnd();
}

PlasmaWindowManagement::PlasmaWindowManagement(std::string socketName, int timeoutMs)
    : socketName_(std::move(socketName)), timeoutMs_(timeoutMs)
{
    connectAndBind();
}

PlasmaWindowManagement::~PlasmaWindowManagement()
{
    disconnect();
}

void PlasmaWindowManagement::connectAndBind()
{
    connection_ = std::make_unique<WaylandConnection>(socketName_);
    if (!connection_->isConnected())
        return;
    static const wl_registry_listener registryListener{&PlasmaWindowManagement::onGlobal,
                                                       &PlasmaWindowManagement::onGlobalRemove};
    registry_ = wl_display_get_registry(connection_->display());
    wl_registry_add_listener(registry_, &registryListener, this);
    // The first answer brings the globals (and binds ours); the second, the windows that
    // existed at bind time; the third, their initial states.
    for (int round = 0; round < 3; ++round)
        connection_->roundtrip(timeoutMs_);
}

void PlasmaWindowManagement::disconnect()
{
    windows_.clear();
    if (management_ != nullptr)
        org_kde_plasma_window_management_destroy(management_);
    if (registry_ != nullptr)
        wl_registry_destroy(registry_);
    management_ = nullptr;
    registry_ = nullptr;
    globalName_ = 0;
    advertisedVersion_ = 0;
    boundVersion_ = 0;
    connection_.reset();
}

void PlasmaWindowManagement::reconnect()
{
    const bool hadWindows = !windows_.empty();
    disconnect();
    connectAndBind();
    if (hadWindows || !windows_.empty())
        emit windowsChanged();
}

void PlasmaWindowManagement::onGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                                      std::uint32_t version)
{
    auto* self = static_cast<PlasmaWindowManagement*>(data);
    if (std::strcmp(interface, org_kde_plasma_window_management_interface.name) != 0 || self->management_ != nullptr)
        return;
    self->advertisedVersion_ = version;
    if (version < minimumVersion)
        return;
    self->globalName_ = name;
    self->boundVersion_ = std::min(version, newestKnownVersion);
    self->management_ = static_cast<org_kde_plasma_window_management*>(
        wl_registry_bind(registry, name, &org_kde_plasma_window_management_interface, self->boundVersion_));
    org_kde_plasma_window_management_add_listener(self->management_, &Window::managementListener, self);
}

void PlasmaWindowManagement::onGlobalRemove(void* data, wl_registry*, std::uint32_t name)
{
    auto* self = static_cast<PlasmaWindowManagement*>(data);
    if (self->management_ == nullptr || name != self->globalName_)
        return;
    // The compositor took the interface back: nothing we hold means anything now.
    self->windows_.clear();
    org_kde_plasma_window_management_destroy(self->management_);
    self->management_ = nullptr;
    self->boundVersion_ = 0;
    self->advertisedVersion_ = 0;
    emit self->windowsChanged();
}

void PlasmaWindowManagement::onWindowAnnounced(void* data, org_kde_plasma_window_management*, std::uint32_t,
                                               const char* uuid)
{
    static_cast<PlasmaWindowManagement*>(data)->addWindow(uuid);
}

void PlasmaWindowManagement::addWindow(const char* uuid)
{
    if (uuid == nullptr || *uuid == '\0' || windows_.count(uuid) != 0)
        return;
    auto window = std::make_unique<Window>();
    window->owner = this;
    window->sequence = nextSequence_++;
    window->info.uuid = uuid;
    window->proxy = org_kde_plasma_window_management_get_window_by_uuid(management_, uuid);
    org_kde_plasma_window_add_listener(window->proxy, &Window::listener, window.get());
    windows_.emplace(window->info.uuid, std::move(window));
}

void PlasmaWindowManagement::removeWindow(Window* window)
{
    // Children that named this window as their parent keep its uuid: they are still dialogs.
    const auto it = windows_.find(window->info.uuid);
    if (it == windows_.end() || it->second.get() != window)
        return;
    const bool wasReady = window->ready;
    for (auto& [uuid, other] : windows_) {
        if (other->parentProxy == window->proxy)
            other->parentProxy = nullptr;
    }
    windows_.erase(it);
    if (wasReady)
        emit windowsChanged();
}

PlasmaWindowManagement::Window* PlasmaWindowManagement::find(const std::string& uuid) const
{
    const auto it = windows_.find(uuid);
    return it != windows_.end() && it->second->ready ? it->second.get() : nullptr;
}

PlasmaWindowManagement::Window* PlasmaWindowManagement::findProxy(org_kde_plasma_window* proxy) const
{
    for (const auto& [uuid, window] : windows_) {
        if (window->proxy == proxy)
            return window.get();
    }
    return nullptr;
}

bool PlasmaWindowManagement::isGranted() const
{
    return management_ != nullptr && connection_ && connection_->isConnected();
}

std::vector<PlasmaWindowInfo> PlasmaWindowManagement::windows() const
{
    std::vector<const Window*> ready;
    for (const auto& [uuid, window] : windows_) {
        if (window->ready)
            ready.push_back(window.get());
    }
    std::sort(ready.begin(), ready.end(), [](const Window* a, const Window* b) { return a->sequence < b->sequence; });
    std::vector<PlasmaWindowInfo> result;
    result.reserve(ready.size());
    for (const Window* window : ready)
        result.push_back(window->info);
    return result;
}

bool PlasmaWindowManagement::setMinimized(const std::string& uuid, bool minimized)
{
    Window* window = isGranted() ? find(uuid) : nullptr;
    if (window == nullptr)
        return false;
    org_kde_plasma_window_set_state(window->proxy, WindowState::minimized, minimized ? WindowState::minimized : 0);
    connection_->flush();
    return true;
}

bool PlasmaWindowManagement::activate(const std::string& uuid)
{
    Window* window = isGranted() ? find(uuid) : nullptr;
    if (window == nullptr)
        return false;
    // Activating a minimized window also restores it, as a taskbar click does.
    org_kde_plasma_window_set_state(window->proxy, WindowState::active | WindowState::minimized, WindowState::active);
    connection_->flush();
    return true;
}

bool PlasmaWindowManagement::close(const std::string& uuid)
{
    Window* window = isGranted() ? find(uuid) : nullptr;
    if (window == nullptr)
        return false;
    org_kde_plasma_window_close(window->proxy);
    connection_->flush();
    return true;
}

bool PlasmaWindowManagement::sync(int timeoutMs)
{
    return connection_ && connection_->roundtrip(timeoutMs);
}

} // namespace stowly::kwin
