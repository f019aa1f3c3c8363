// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The Linux backend on a real X server, window manager and apps: every answer of ours is
// compared with what xprop, wmctrl and /proc say.

#include "BedTest.h"
#include "NetWmIcon.h"
#include "ProcFs.h"
#include "TestBed.h"
#include "TextUtil.h"
#include "X11Platform.h"
#include "XConnection.h"
#include "XdgAutostart.h"

#include <QColor>
#include <QImage>

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <thread>

using namespace stowly;
using namespace stowly::testbed;

namespace stowly::testbed {
Display& sharedDisplay();
}

namespace {

RunningApplicationRef appWithPid(Workspace& workspace, int pid)
{
    for (const auto& app : workspace.runningApplications())
        if (app->processIdentifier() == pid)
            return app;
    return nullptr;
}

// Windows of a pid in client-list order, as wmctrl sees them.
std::vector<std::uint32_t> wmctrlWindowsOf(int pid)
{
    std::vector<std::uint32_t> out;
    for (const auto& w : wmctrlWindows())
        if (w.pid == pid)
            out.push_back(w.window);
    return out;
}

AXElementList axWindows(Accessibility& ax, int pid)
{
    AXValue value;
    const AXError error = ax.copyAttributeValue(ax.createApplication(pid), kAXWindowsAttribute, value);
    EXPECT_EQ(error, kAXErrorSuccess);
    const auto* list = std::get_if<AXElementList>(&value);
    return list != nullptr ? *list : AXElementList{};
}

std::optional<std::string> axString(Accessibility& ax, const AXElementRef& e, const std::string& attribute)
{
    AXValue value;
    if (ax.copyAttributeValue(e, attribute, value) != kAXErrorSuccess)
        return std::nullopt;
    if (const auto* s = std::get_if<std::string>(&value))
        return *s;
    return std::nullopt;
}

using Backend = BedTest;

} // namespace

TEST_F(Backend, TrustedWithAnEwmhWindowManager)
{
    EXPECT_TRUE(p.trust.isProcessTrusted(false));
    EXPECT_TRUE(p.trust.isProcessTrusted(true));
}

TEST(BareServer, NotTrustedWithoutWindowManagerAndSurvivesLostConnection)
{
    Display bare(false);
    ASSERT_TRUE(bare.ok());
    x11::X11Platform linux_(bare.name());
    Platform& p = linux_.platform();
    EXPECT_FALSE(p.trust.isProcessTrusted(false));
    EXPECT_TRUE(p.workspace.runningApplications().empty());

    AXValue value;
    EXPECT_EQ(p.accessibility.copyAttributeValue(p.accessibility.createApplication(1), kAXWindowsAttribute, value),
              kAXErrorSuccess);

    bare.killServer();
    // Every call now meets a dead connection: answers, never a crash or a hang.
    EXPECT_EQ(p.accessibility.copyAttributeValue(p.accessibility.createApplication(1), kAXWindowsAttribute, value),
              kAXErrorCannotComplete);
    EXPECT_TRUE(p.workspace.runningApplications().empty());
    EXPECT_EQ(p.workspace.runningApplication(static_cast<int>(getpid())), nullptr);
    EXPECT_FALSE(p.trust.isProcessTrusted(false));
}

// A window manager's client list names each window once, by EWMH; one that names a window
// twice (openbox has been seen keeping stale entries under churn) must not make a bulk
// action ask that window twice. Here the test itself plays the window manager.
TEST(BareServer, AWindowListedTwiceIsOneWindow)
{
    struct Restore {
        ~Restore() { setenv("DISPLAY", sharedDisplay().name().c_str(), 1); }
    } restore;
    Display bare(false);
    ASSERT_TRUE(bare.ok());
    setenv("DISPLAY", bare.name().c_str(), 1);
    Apps apps;
    const int pid = apps.startTestWindow("listed twice");

    xcb_connection_t* c = xcb_connect(bare.name().c_str(), nullptr);
    ASSERT_EQ(xcb_connection_has_error(c), 0);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    auto atom = [&](const char* name) {
        xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(
            c, xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
        const xcb_atom_t a = reply != nullptr ? reply->atom : XCB_NONE;
        std::free(reply);
        return a;
    };
    // The app's window: the root's only child that names the app's pid.
    xcb_window_t window = XCB_NONE;
    ASSERT_TRUE(waitUntil([&] {
        xcb_query_tree_reply_t* tree = xcb_query_tree_reply(c, xcb_query_tree(c, root), nullptr);
        if (tree == nullptr)
            return false;
        const xcb_window_t* children = xcb_query_tree_children(tree);
        for (int i = 0; i < xcb_query_tree_children_length(tree); ++i) {
            xcb_get_property_reply_t* property = xcb_get_property_reply(
                c, xcb_get_property(c, 0, children[i], atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 0, 1), nullptr);
            if (property != nullptr && xcb_get_property_value_length(property) == 4 &&
                *static_cast<const std::uint32_t*>(xcb_get_property_value(property)) == static_cast<std::uint32_t>(pid))
                window = children[i];
            std::free(property);
        }
        std::free(tree);
        return window != XCB_NONE;
    }));
    const xcb_window_t check = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, check, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, check, atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 32, 1,
                        &check);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, root, atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 32, 1,
                        &check);
    const xcb_atom_t supported[] = {atom("_NET_CLIENT_LIST")};
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, root, atom("_NET_SUPPORTED"), XCB_ATOM_ATOM, 32, 1, supported);
    const xcb_window_t twice[] = {window, window};
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, root, atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 32, 2, twice);
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); // all of it applied

    x11::X11Platform linux_(bare.name());
    Platform& p = linux_.platform();
    EXPECT_TRUE(p.trust.isProcessTrusted(false));
    EXPECT_EQ(p.workspace.runningApplications().size(), 1u);
    AXValue value;
    ASSERT_EQ(p.accessibility.copyAttributeValue(p.accessibility.createApplication(pid), kAXWindowsAttribute, value),
              kAXErrorSuccess);
    const auto* windows = std::get_if<AXElementList>(&value);
    ASSERT_NE(windows, nullptr);
    EXPECT_EQ(windows->size(), 1u);
    xcb_disconnect(c);
}

namespace {

// A stand-in window manager on its own connection: only what EWMH says a manager
// announces, a check window pointing at itself and _NET_SUPPORTED on the root.
class AnnouncingManager {
public:
    explicit AnnouncingManager(const std::string& display) : m_c(xcb_connect(display.c_str(), nullptr))
    {
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_c)).data->root;
    }
    ~AnnouncingManager() { xcb_disconnect(m_c); }
    AnnouncingManager(const AnnouncingManager&) = delete;
    AnnouncingManager& operator=(const AnnouncingManager&) = delete;

    bool ok() const { return xcb_connection_has_error(m_c) == 0; }
    xcb_atom_t atom(const char* name)
    {
        auto* reply = xcb_intern_atom_reply(m_c, xcb_intern_atom(m_c, 0, std::strlen(name), name), nullptr);
        const xcb_atom_t atom = reply ? reply->atom : XCB_NONE;
        std::free(reply);
        return atom;
    }
    // A new check window, and the root pointing at it.
    xcb_window_t announce()
    {
        const xcb_window_t check = xcb_generate_id(m_c);
        xcb_create_window(m_c, XCB_COPY_FROM_PARENT, check, m_root, -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        const xcb_atom_t wmCheck = atom("_NET_SUPPORTING_WM_CHECK");
        xcb_change_property(m_c, XCB_PROP_MODE_REPLACE, check, wmCheck, XCB_ATOM_WINDOW, 32, 1, &check);
        xcb_change_property(m_c, XCB_PROP_MODE_REPLACE, m_root, wmCheck, XCB_ATOM_WINDOW, 32, 1, &check);
        supports({atom("_NET_CLIENT_LIST"), atom("_NET_ACTIVE_WINDOW")});
        return check;
    }
    void supports(const std::vector<xcb_atom_t>& atoms)
    {
        xcb_change_property(m_c, XCB_PROP_MODE_REPLACE, m_root, atom("_NET_SUPPORTED"), XCB_ATOM_ATOM, 32,
                            static_cast<std::uint32_t>(atoms.size()), atoms.data());
        sync();
    }
    void destroy(xcb_window_t window)
    {
        xcb_destroy_window(m_c, window);
        sync();
    }
    void sync() { std::free(xcb_get_input_focus_reply(m_c, xcb_get_input_focus(m_c), nullptr)); }

private:
    xcb_connection_t* m_c;
    xcb_window_t m_root = XCB_NONE;
};

} // namespace

TEST(BareServer, TrustIsKeptWithoutRoundTripsUntilTheManagerChanges)
{
    Display bare(false);
    ASSERT_TRUE(bare.ok());
    x11::X11Platform linux_(bare.name());
    AccessibilityTrust& trust = linux_.platform().trust;
    x11::XConnection& x = linux_.connection();
    EXPECT_FALSE(trust.isProcessTrusted(false));

    AnnouncingManager manager(bare.name());
    ASSERT_TRUE(manager.ok());
    const xcb_window_t first = manager.announce();
    EXPECT_TRUE(trust.isProcessTrusted(false));
    const std::uint64_t asked = x.roundTrips();
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(trust.isProcessTrusted(false));
    EXPECT_EQ(x.roundTrips(), asked) << "a kept answer asks the server nothing";

    // The manager goes: its check window is destroyed, the root still names it.
    manager.destroy(first);
    EXPECT_FALSE(trust.isProcessTrusted(false));

    // A new manager, then one that stops listing its clients.
    const xcb_window_t second = manager.announce();
    EXPECT_TRUE(trust.isProcessTrusted(false));
    EXPECT_TRUE(trust.isProcessTrusted(false));
    manager.supports({manager.atom("_NET_ACTIVE_WINDOW")});
    EXPECT_FALSE(trust.isProcessTrusted(false));
    manager.supports({manager.atom("_NET_CLIENT_LIST")});
    EXPECT_TRUE(trust.isProcessTrusted(false));

    // The check window stops pointing at itself: a leftover, not a manager.
    const xcb_atom_t wmCheck = manager.atom("_NET_SUPPORTING_WM_CHECK");
    EXPECT_TRUE(trust.isProcessTrusted(false));
    {
        xcb_connection_t* c = xcb_connect(bare.name().c_str(), nullptr);
        const xcb_window_t nobody = XCB_NONE;
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, second, wmCheck, XCB_ATOM_WINDOW, 32, 1, &nobody);
        std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
        xcb_disconnect(c);
    }
    EXPECT_FALSE(trust.isProcessTrusted(false));
}

TEST_F(Backend, ElementsOfALostConnectionAnswerCannotComplete)
{
    // Back to the shared display for everything else this process starts, even when the
    // second display fails to come up.
    struct Restore {
        ~Restore() { setenv("DISPLAY", sharedDisplay().name().c_str(), 1); }
    } restore;
    Display other(true);
    ASSERT_TRUE(other.ok());
    x11::X11Platform remote(other.name());
    Apps local;
    const int pid = local.startTestWindow("lost-connection window");
    ASSERT_TRUE(waitUntil([&] { return !wmctrlWindows(other.name()).empty(); }, 15s))
        << other.name() << " " << sharedDisplay().name() << " pid alive " << !processGone(pid) << " wm alive "
        << !processGone(other.windowManagerPid()) << " shared wm alive "
        << !processGone(sharedDisplay().windowManagerPid()) << "\n"
        << run("tr '\\0' '\\n' < /proc/" + std::to_string(pid) + "/environ | grep DISPLAY") << "\n"
        << run("wmctrl -lp") << "\n"
        << run("DISPLAY=" + other.name() + " wmctrl -lp 2>&1; DISPLAY=" + other.name() + " xprop -root 2>&1 | head -5");
    Accessibility& ax = remote.platform().accessibility;
    AXElementList windows;
    ASSERT_TRUE(waitUntil([&] {
        AXValue value;
        ax.copyAttributeValue(ax.createApplication(pid), kAXWindowsAttribute, value);
        const auto* list = std::get_if<AXElementList>(&value);
        windows = list ? *list : AXElementList{};
        return !windows.empty();
    }));
    AXValue button;
    ASSERT_EQ(ax.copyAttributeValue(windows[0], kAXCloseButtonAttribute, button), kAXErrorSuccess);
    other.killServer();
    local.killAll();
    EXPECT_EQ(ax.setAttributeValue(windows[0], kAXMinimizedAttribute, true), kAXErrorCannotComplete);
    EXPECT_EQ(ax.performAction(std::get<AXElementRef>(button), kAXPressAction), kAXErrorCannotComplete);
    AXValue value;
    EXPECT_EQ(ax.copyAttributeValue(windows[0], kAXRoleAttribute, value), kAXErrorCannotComplete);
}

TEST_F(Backend, ListsOneAppPerProcessWithPolicyNameAndId)
{
    const int term1 = apps.startXterm("list-term-1");
    const int term2 = apps.startXterm("list-term-2");
    const int logo = apps.start({"xlogo", "-title", "list-logo"});
    const int accessory = apps.startTestWindow("list-accessory", {"--skip-taskbar"});
    const int utility = apps.startTestWindow("list-utility", {"--type", "utility"});
    const int twoWindows =
        apps.startTestWindow("list-two", {"--windows", "2", "--dialog", "--gtk-id", "org.stowly.GtkProbe"});
    const int noPid = apps.startTestWindow("list-nopid", {"--no-pid", "--class", "classmatch", "ClassMatch"});
    ASSERT_TRUE(waitForWindowTitled("list-term-1") && waitForWindowTitled("list-term-2"));
    ASSERT_TRUE(waitForWindowTitled("list-logo")); // xlogo sets no _NET_WM_PID
    ASSERT_TRUE(waitForWindowTitled("list-accessory") && waitForWindowTitled("list-utility"));
    ASSERT_TRUE(waitForWindowCount("list-two", 3) && waitForWindowTitled("list-nopid"));

    const auto list = p.workspace.runningApplications();
    std::map<int, RunningApplicationRef> byPid;
    for (const auto& app : list) {
        EXPECT_EQ(byPid.count(app->processIdentifier()), 0u) << "one entry per process";
        byPid[app->processIdentifier()] = app;
    }
    for (const int pid : {term1, term2, logo, accessory, utility, twoWindows, noPid})
        ASSERT_EQ(byPid.count(pid), 1u) << "pid " << pid;

    EXPECT_EQ(byPid[term1]->localizedName(), "Test Terminal");
    EXPECT_EQ(byPid[term1]->bundleIdentifier(), "org.stowly.TestTerminal");
    EXPECT_EQ(byPid[logo]->localizedName(), "XLogo");
    EXPECT_EQ(byPid[logo]->bundleIdentifier(), "XLogo");
    EXPECT_EQ(byPid[twoWindows]->localizedName(), "Gtk Probe");
    EXPECT_EQ(byPid[twoWindows]->bundleIdentifier(), "org.stowly.GtkProbe");
    // Found by X-Resource although the window carries no _NET_WM_PID; the user's data
    // directory shadows the system one.
    EXPECT_EQ(byPid[noPid]->localizedName(), "Class Match");
    EXPECT_EQ(byPid[noPid]->bundleIdentifier(), "classmatch");

    for (const int pid : {term1, term2, logo, twoWindows, noPid})
        EXPECT_EQ(byPid[pid]->activationPolicy(), ActivationPolicy::regular) << pid;
    EXPECT_EQ(byPid[accessory]->activationPolicy(), ActivationPolicy::accessory);
    EXPECT_EQ(byPid[utility]->activationPolicy(), ActivationPolicy::accessory);
    for (const auto& [pid, app] : byPid) {
        EXPECT_FALSE(app->isTerminated());
        EXPECT_FALSE(app->isHidden());
    }
    EXPECT_EQ(p.workspace.currentProcessIdentifier(), static_cast<int>(getpid()));
    // The window manager owns no client window and is no app.
    EXPECT_EQ(byPid.count(sharedDisplay().windowManagerPid()), 0u);

    // Client-list order: each app first appears with its first window.
    std::vector<int> expectedOrder;
    for (const auto& w : wmctrlWindows())
        if (w.pid > 0 && byPid.count(w.pid) &&
            std::find(expectedOrder.begin(), expectedOrder.end(), w.pid) == expectedOrder.end())
            expectedOrder.push_back(w.pid);
    std::vector<int> actualOrder;
    for (const auto& app : list)
        if (std::find(expectedOrder.begin(), expectedOrder.end(), app->processIdentifier()) != expectedOrder.end())
            actualOrder.push_back(app->processIdentifier());
    EXPECT_EQ(actualOrder, expectedOrder);
}

TEST_F(Backend, LocalizedNameFollowsTheLocale)
{
    const int term = apps.startXterm("locale-term");
    ASSERT_TRUE(waitForWindowTitled("locale-term"));
    setenv("LC_MESSAGES", "de_AT.UTF-8", 1);
    const auto austrian = appWithPid(p.workspace, term);
    setenv("LC_MESSAGES", "de_DE.UTF-8@euro", 1);
    const auto german = appWithPid(p.workspace, term);
    unsetenv("LC_MESSAGES");
    const auto plain = appWithPid(p.workspace, term);
    ASSERT_TRUE(austrian && german && plain);
    EXPECT_EQ(austrian->localizedName(), "Testterminal (AT)");
    EXPECT_EQ(german->localizedName(), "Testterminal");
    EXPECT_EQ(plain->localizedName(), "Test Terminal");
}

TEST_F(Backend, IconNearestTheDrawnSizeAndOddIconsAreHarmless)
{
    const int plain = apps.startTestWindow("icon-plain", {"--icon", "48"});
    const int huge = apps.startTestWindow("icon-huge", {"--huge-icon"});
    const int none = apps.startTestWindow("icon-none");
    ASSERT_TRUE(waitForWindowTitled("icon-plain") && waitForWindowTitled("icon-huge") &&
                waitForWindowTitled("icon-none"));
    ASSERT_NE(xprop(waitForWindowTitled("icon-huge"), "_NET_WM_ICON").find("_NET_WM_ICON(CARDINAL)"),
              std::string::npos);

    const auto plainApp = appWithPid(p.workspace, plain);
    const auto hugeApp = appWithPid(p.workspace, huge);
    const auto noneApp = appWithPid(p.workspace, none);
    ASSERT_TRUE(plainApp && hugeApp && noneApp);
    ASSERT_TRUE(plainApp->icon());
    EXPECT_EQ(plainApp->icon()->width, 48);
    EXPECT_EQ(plainApp->icon()->argb.size(), 48u * 48u);
    // 32 px is nearer 48 px than 1200 px; the lying entry after them is ignored.
    ASSERT_TRUE(hugeApp->icon());
    EXPECT_EQ(hugeApp->icon()->width, 32);
    // openbox gives icon-less windows its own 48 px icon; whatever is there is what we show.
    const bool hasIcon =
        xprop(waitForWindowTitled("icon-none"), "_NET_WM_ICON").find("Icon (48 x 48)") != std::string::npos;
    EXPECT_EQ(noneApp->icon() != nullptr, hasIcon);
}

TEST_F(Backend, AppsWithoutWindowIconsShowTheirDesktopEntryIcon)
{
    // One entry names a hicolor icon, one an absolute file, one an icon that exists nowhere.
    const std::string hicolor = dirs().dataDir + "/icons/hicolor/48x48/apps";
    ASSERT_EQ(std::system(("mkdir -p '" + hicolor + "'").c_str()), 0);
    QImage themed(48, 48, QImage::Format_ARGB32);
    themed.fill(QColor(0x20, 0x80, 0xc0));
    ASSERT_TRUE(themed.save(QString::fromStdString(hicolor + "/stowly-probe-themed.png")));
    QImage bigFile(300, 300, QImage::Format_ARGB32);
    bigFile.fill(QColor(0xc0, 0x40, 0x20));
    const std::string absolute = dirs().root + "/probe-absolute.png";
    ASSERT_TRUE(bigFile.save(QString::fromStdString(absolute)));
    writeFile(dirs().dataDir + "/applications/org.stowly.ThemedProbe.desktop",
              "[Desktop Entry]\nType=Application\nName=Themed Probe\nExec=true\nIcon=stowly-probe-themed\n"
              "StartupWMClass=ThemedProbe\n");
    writeFile(dirs().dataDir + "/applications/org.stowly.FileProbe.desktop",
              "[Desktop Entry]\nType=Application\nName=File Probe\nExec=true\nIcon=" + absolute +
                  "\nStartupWMClass=FileProbe\n");
    writeFile(dirs().dataDir + "/applications/org.stowly.MissingProbe.desktop",
              "[Desktop Entry]\nType=Application\nName=Missing Probe\nExec=true\nIcon=stowly-no-such-icon\n"
              "StartupWMClass=MissingProbe\n");

    const int themedApp =
        apps.startTestWindow("probe-themed", {"--pixmap-icon", "--class", "themedprobe", "ThemedProbe"});
    const int fileApp = apps.startTestWindow("probe-file", {"--pixmap-icon", "--class", "fileprobe", "FileProbe"});
    const int missingApp =
        apps.startTestWindow("probe-missing", {"--pixmap-icon", "--class", "missingprobe", "MissingProbe"});
    ASSERT_TRUE(waitForWindowTitled("probe-themed") && waitForWindowTitled("probe-file") &&
                waitForWindowTitled("probe-missing"));
    for (const char* title : {"probe-themed", "probe-file", "probe-missing"})
        ASSERT_EQ(xprop(waitForWindowTitled(title), "_NET_WM_ICON").find("Icon ("), std::string::npos) << title;

    const auto themedRef = appWithPid(p.workspace, themedApp);
    const auto fileRef = appWithPid(p.workspace, fileApp);
    const auto missingRef = appWithPid(p.workspace, missingApp);
    ASSERT_TRUE(themedRef && fileRef && missingRef);
    EXPECT_EQ(themedRef->localizedName(), "Themed Probe");
    ASSERT_TRUE(themedRef->icon());
    EXPECT_EQ(themedRef->icon()->width, 48);
    EXPECT_EQ(themedRef->icon()->argb.at(0), 0xff2080c0u);
    // A large file is scaled down to the size the panel draws.
    ASSERT_TRUE(fileRef->icon());
    EXPECT_EQ(fileRef->icon()->width, 48);
    EXPECT_EQ(fileRef->icon()->argb.at(48 * 24 + 24), 0xffc04020u);
    EXPECT_EQ(missingRef->localizedName(), "Missing Probe");
    EXPECT_EQ(missingRef->icon(), nullptr);
}

TEST(NetWmIcon, DecodesRobustly)
{
    // Only a huge entry: kept, but scaled down.
    std::vector<std::uint32_t> data{600, 300};
    data.resize(2 + 600 * 300, 0xff112233);
    auto icon = x11::decodeNetWmIcon(data.data(), data.size(), 48);
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->width, 256);
    EXPECT_EQ(icon->height, 128);
    EXPECT_EQ(icon->argb.front(), 0xff112233u);
    // Truncated, zero, overflowing sizes.
    const std::uint32_t truncated[] = {16, 16, 1, 2, 3};
    EXPECT_EQ(x11::decodeNetWmIcon(truncated, 5, 48), nullptr);
    const std::uint32_t zero[] = {0, 5, 1};
    EXPECT_EQ(x11::decodeNetWmIcon(zero, 3, 48), nullptr);
    const std::uint32_t overflow[] = {0xffffffff, 0xffffffff, 1, 2};
    EXPECT_EQ(x11::decodeNetWmIcon(overflow, 4, 48), nullptr);
    const std::uint32_t tie[] = {1, 1, 7, 3, 3, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    icon = x11::decodeNetWmIcon(tie, sizeof tie / 4, 2);
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->width, 3); // 1 and 3 are as near as each other to 2: the larger wins
}

TEST(TextUtil, NeverPassesInvalidUtf8)
{
    EXPECT_EQ(linuxdesktop::latin1OrUtf8ToUtf8("Gr\xfc\xdf"), "Gr\xc3\xbc\xc3\x9f");
    EXPECT_EQ(linuxdesktop::latin1OrUtf8ToUtf8("caf\xc3\xa9"), "caf\xc3\xa9");
    EXPECT_EQ(linuxdesktop::sanitizeUtf8("a\xff"
                                         "b\xed\xa0\x80"),
              "a\xef\xbf\xbd"
              "b\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_TRUE(linuxdesktop::isValidUtf8(linuxdesktop::sanitizeUtf8("\xc0\xaf\xf5\x80")));
}

TEST_F(Backend, GarbagePropertiesAndNonUtf8TitlesAreHarmless)
{
    const std::string title = "garbage-\xff\xfe-title";
    const int garbage = apps.startTestWindow(title, {"--garbage"});
    const int latin1 = apps.startTestWindow("latin1-title-\xe9", {"--class", "gr\xfc\xdf", "Gr\xfc\xdf"});
    ASSERT_TRUE(waitForWindowTitled("garbage-") && waitForWindowTitled("latin1-title-"));
    const auto garbageApp = appWithPid(p.workspace, garbage);
    const auto latin1App = appWithPid(p.workspace, latin1);
    ASSERT_TRUE(garbageApp && latin1App);
    // Its WM_CLASS has an instance but no class: no name, no id (the panel says "Unknown App").
    EXPECT_EQ(garbageApp->localizedName(), std::nullopt);
    EXPECT_EQ(garbageApp->bundleIdentifier(), std::nullopt);
    (void)garbageApp->icon(); // openbox may have replaced the junk icon with its own
    EXPECT_EQ(garbageApp->activationPolicy(), ActivationPolicy::regular); // unreadable type counts as none
    EXPECT_FALSE(garbageApp->isHidden());
    EXPECT_EQ(latin1App->localizedName(), "Gr\xc3\xbc\xc3\x9f");

    const auto windows = axWindows(p.accessibility, garbage);
    ASSERT_EQ(windows.size(), 1u);
    const auto axTitle = axString(p.accessibility, windows[0], "AXTitle");
    ASSERT_TRUE(axTitle);
    EXPECT_TRUE(linuxdesktop::isValidUtf8(*axTitle));
    EXPECT_EQ(axString(p.accessibility, windows[0], kAXRoleAttribute), "AXWindow");
    AXValue value;
    // Its WM_PROTOCOLS is junk: no close button, so nothing can kill it by accident.
    EXPECT_NE(p.accessibility.copyAttributeValue(windows[0], kAXCloseButtonAttribute, value), kAXErrorSuccess);
}

TEST_F(Backend, AccessibilityWindowsRolesAndSubroles)
{
    const int two = apps.startTestWindow("ax-two", {"--windows", "2", "--dialog"});
    const int utility = apps.startTestWindow("ax-utility", {"--type", "utility"});
    const int untypedTransient = apps.startTestWindow("ax-untyped", {"--type", "none", "--no-delete"});
    ASSERT_TRUE(waitForWindowCount("ax-two", 3) && waitForWindowTitled("ax-utility") &&
                waitForWindowTitled("ax-untyped"));

    const auto windows = axWindows(p.accessibility, two);
    ASSERT_EQ(windows.size(), 3u);
    // Same order as the window manager's client list.
    const auto expected = wmctrlWindowsOf(two);
    std::vector<std::string> titles;
    for (const auto& w : windows)
        titles.push_back(axString(p.accessibility, w, "AXTitle").value_or(""));
    std::vector<std::string> expectedTitles;
    for (const auto& w : wmctrlWindows())
        if (w.pid == two)
            expectedTitles.push_back(w.title);
    EXPECT_EQ(titles, expectedTitles);
    EXPECT_EQ(expected.size(), 3u);

    int dialogs = 0, standard = 0;
    for (const auto& w : windows) {
        EXPECT_EQ(axString(p.accessibility, w, kAXRoleAttribute), "AXWindow");
        const auto subrole = axString(p.accessibility, w, kAXSubroleAttribute);
        dialogs += subrole == kAXDialogSubrole;
        standard += subrole == kAXStandardWindowSubrole;
        AXValue minimized;
        ASSERT_EQ(p.accessibility.copyAttributeValue(w, kAXMinimizedAttribute, minimized), kAXErrorSuccess);
        EXPECT_EQ(std::get<bool>(minimized), false);
        AXValue button;
        EXPECT_EQ(p.accessibility.copyAttributeValue(w, kAXCloseButtonAttribute, button), kAXErrorSuccess);
        EXPECT_TRUE(std::holds_alternative<AXElementRef>(button));
    }
    EXPECT_EQ(dialogs, 1);
    EXPECT_EQ(standard, 2);

    const auto util = axWindows(p.accessibility, utility);
    ASSERT_EQ(util.size(), 1u);
    EXPECT_EQ(axString(p.accessibility, util[0], kAXSubroleAttribute), kAXFloatingWindowSubrole);
    const auto untyped = axWindows(p.accessibility, untypedTransient);
    ASSERT_EQ(untyped.size(), 1u);
    EXPECT_EQ(axString(p.accessibility, untyped[0], kAXSubroleAttribute), kAXStandardWindowSubrole);
    AXValue value;
    EXPECT_EQ(p.accessibility.copyAttributeValue(untyped[0], kAXCloseButtonAttribute, value),
              kAXErrorAttributeUnsupported);
    EXPECT_EQ(p.accessibility.copyAttributeValue(untyped[0], "AXNoSuchThing", value), kAXErrorAttributeUnsupported);
    EXPECT_EQ(p.accessibility.performAction(untyped[0], kAXPressAction), kAXErrorActionUnsupported);
    EXPECT_EQ(p.accessibility.setAttributeValue(untyped[0], kAXRoleAttribute, std::string("x")),
              kAXErrorAttributeUnsupported);
    EXPECT_TRUE(axWindows(p.accessibility, 999999).empty());
}

TEST_F(Backend, MinimizeAndCloseThroughAccessibility)
{
    const int term = apps.startXterm("axact-term");
    const std::uint32_t window = waitForWindowTitled("axact-term");
    ASSERT_NE(window, 0u);
    auto windows = axWindows(p.accessibility, term);
    ASSERT_EQ(windows.size(), 1u);
    EXPECT_EQ(p.accessibility.setAttributeValue(windows[0], kAXMinimizedAttribute, true), kAXErrorSuccess);
    EXPECT_TRUE(waitUntil([&] { return isIconic(window); }));
    windows = axWindows(p.accessibility, term);
    ASSERT_EQ(windows.size(), 1u);
    AXValue minimized;
    ASSERT_EQ(p.accessibility.copyAttributeValue(windows[0], kAXMinimizedAttribute, minimized), kAXErrorSuccess);
    EXPECT_EQ(std::get<bool>(minimized), true);
    // Minimizing is not hiding: no mark.
    EXPECT_EQ(xprop(window, "_STOWLY_HIDDEN").find("= 1"), std::string::npos);

    AXValue button;
    ASSERT_EQ(p.accessibility.copyAttributeValue(windows[0], kAXCloseButtonAttribute, button), kAXErrorSuccess);
    EXPECT_EQ(p.accessibility.performAction(std::get<AXElementRef>(button), kAXPressAction), kAXErrorSuccess);
    EXPECT_TRUE(waitUntil([&] { return processGone(term); }));
}

TEST_F(Backend, BatchedRequestsGoOutWhenTheOutermostBatchEnds)
{
    const int app = apps.startTestWindow("batch-me", {"--windows", "2"});
    ASSERT_TRUE(waitUntil([&] { return wmctrlWindowsOf(app).size() == 2; }));
    const auto ids = wmctrlWindowsOf(app);
    const auto windows = axWindows(p.accessibility, app);
    ASSERT_EQ(windows.size(), 2u);

    p.accessibility.beginRequestBatch();
    p.accessibility.beginRequestBatch();
    for (const auto& window : windows)
        EXPECT_EQ(p.accessibility.setAttributeValue(window, kAXMinimizedAttribute, true), kAXErrorSuccess);
    p.accessibility.endRequestBatch();
    // Still held by the outer batch: the window manager has not been told.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_FALSE(isIconic(ids[0]));
    EXPECT_FALSE(isIconic(ids[1]));
    p.accessibility.endRequestBatch();
    EXPECT_TRUE(waitUntil([&] { return isIconic(ids[0]) && isIconic(ids[1]); }));

    // An end without a begin is harmless, and a request outside any batch goes out at once.
    p.accessibility.endRequestBatch();
    run("wmctrl -i -a " + std::to_string(ids[0]) + " 2>/dev/null");
    ASSERT_TRUE(waitUntil([&] { return !isIconic(ids[0]); }));
    const auto again = axWindows(p.accessibility, app);
    ASSERT_EQ(again.size(), 2u);
    for (const auto& window : again) {
        AXValue minimized;
        ASSERT_EQ(p.accessibility.copyAttributeValue(window, kAXMinimizedAttribute, minimized), kAXErrorSuccess);
        if (!std::get<bool>(minimized)) {
            EXPECT_EQ(p.accessibility.setAttributeValue(window, kAXMinimizedAttribute, true), kAXErrorSuccess);
        }
    }
    EXPECT_TRUE(waitUntil([&] { return isIconic(ids[0]); }));
}

TEST_F(Backend, VanishedWindowsAnswerInvalidElement)
{
    const int app = apps.startTestWindow("vanish-one");
    ASSERT_TRUE(waitForWindowTitled("vanish-one"));
    const auto windows = axWindows(p.accessibility, app);
    ASSERT_EQ(windows.size(), 1u);
    AXValue button;
    ASSERT_EQ(p.accessibility.copyAttributeValue(windows[0], kAXCloseButtonAttribute, button), kAXErrorSuccess);
    apps.killAll();
    ASSERT_TRUE(waitUntil([&] { return wmctrlWindowsOf(app).empty(); }));
    EXPECT_EQ(p.accessibility.setAttributeValue(windows[0], kAXMinimizedAttribute, true), kAXErrorInvalidUIElement);
    EXPECT_EQ(p.accessibility.performAction(std::get<AXElementRef>(button), kAXPressAction), kAXErrorInvalidUIElement);
    EXPECT_TRUE(axWindows(p.accessibility, app).empty());
    EXPECT_TRUE(p.trust.isProcessTrusted(false)); // the connection is still fine
}

TEST_F(Backend, WindowsComingAndGoingDuringWalks)
{
    const int churn = apps.startTestWindow("churn-main", {"--churn"});
    ASSERT_TRUE(waitForWindowTitled("churn-main"));
    int seenExtra = 0;
    for (int round = 0; round < 150; ++round) {
        const auto list = p.workspace.runningApplications();
        for (const auto& app : list)
            (void)app->localizedName();
        const auto windows = axWindows(p.accessibility, churn);
        seenExtra += windows.size() > 1;
        for (const auto& w : windows) {
            AXValue v;
            const AXError e = p.accessibility.copyAttributeValue(w, kAXSubroleAttribute, v);
            EXPECT_TRUE(e == kAXErrorSuccess || e == kAXErrorInvalidUIElement) << e;
        }
    }
    EXPECT_FALSE(processGone(churn));
    EXPECT_TRUE(p.trust.isProcessTrusted(false));
    ::testing::Test::RecordProperty("churnRoundsWithExtraWindow", seenExtra);
}

TEST_F(Backend, HideMarksAndIconifiesThenActivateBringsBack)
{
    const int app = apps.startTestWindow("hide-me", {"--windows", "2"});
    const int other = apps.startXterm("hide-other");
    ASSERT_TRUE(waitForWindowCount("hide-me", 2) && waitForWindowTitled("hide-other"));
    const auto ids = wmctrlWindowsOf(app);
    ASSERT_EQ(ids.size(), 2u);
    auto target = appWithPid(p.workspace, app);
    ASSERT_TRUE(target);
    EXPECT_TRUE(target->hide());
    for (const auto id : ids) {
        EXPECT_TRUE(waitUntil([&] { return isIconic(id); })) << id;
        EXPECT_NE(xprop(id, "_STOWLY_HIDDEN").find("= 1"), std::string::npos);
    }
    EXPECT_TRUE(waitUntil([&] { return appWithPid(p.workspace, app)->isHidden(); }));
    EXPECT_FALSE(appWithPid(p.workspace, other)->isHidden());

    EXPECT_TRUE(appWithPid(p.workspace, app)->activate(activateAllWindows | activateIgnoringOtherApps));
    for (const auto id : ids) {
        EXPECT_TRUE(waitUntil([&] { return !isIconic(id); })) << id;
        EXPECT_EQ(xprop(id, "_STOWLY_HIDDEN").find("= 1"), std::string::npos);
    }
    EXPECT_TRUE(waitUntil([&] {
        const auto active = activeWindow();
        return std::find(ids.begin(), ids.end(), active) != ids.end();
    }));
    EXPECT_TRUE(waitUntil([&] { return appWithPid(p.workspace, app)->isActive(); }));
    EXPECT_FALSE(appWithPid(p.workspace, app)->isHidden());
    EXPECT_FALSE(appWithPid(p.workspace, other)->isActive());
}

TEST_F(Backend, TerminateAsksPolitelyAndForceTerminateKills)
{
    const int term = apps.startXterm("term-polite");
    const int stubborn = apps.startTestWindow("term-nodelete", {"--no-delete"});
    const int victim = apps.startTestWindow("term-victim");
    ASSERT_TRUE(waitForWindowTitled("term-polite") && waitForWindowTitled("term-nodelete") &&
                waitForWindowTitled("term-victim"));
    auto termApp = appWithPid(p.workspace, term);
    auto stubbornApp = appWithPid(p.workspace, stubborn);
    auto victimApp = appWithPid(p.workspace, victim);
    ASSERT_TRUE(termApp && stubbornApp && victimApp);
    EXPECT_TRUE(termApp->terminate());
    EXPECT_TRUE(waitUntil([&] { return processGone(term); }));
    EXPECT_TRUE(termApp->isTerminated());
    // No window it could close: asked to quit by SIGTERM instead of being killed by the WM.
    EXPECT_TRUE(stubbornApp->terminate());
    EXPECT_TRUE(waitUntil([&] { return processGone(stubborn); }));
    EXPECT_TRUE(victimApp->forceTerminate());
    EXPECT_TRUE(waitUntil([&] { return processGone(victim); }));
    EXPECT_TRUE(victimApp->isTerminated());
    EXPECT_FALSE(victimApp->forceTerminate());
    EXPECT_FALSE(processGone(sharedDisplay().windowManagerPid()));
}

TEST_F(Backend, HelperProcessesBelongToTheirApp)
{
    const int app = apps.startTestWindow("helper-parent", {"--child-alloc-mb", "8"});
    ASSERT_TRUE(waitForWindowTitled("helper-parent"));
    int child = 0;
    ASSERT_TRUE(waitUntil([&] {
        for (const int pid : allProcesses())
            if (parentOf(pid) == app)
                child = pid;
        return child != 0;
    }));
    const auto owner = p.workspace.runningApplication(child);
    ASSERT_TRUE(owner);
    EXPECT_EQ(owner->processIdentifier(), app);
    EXPECT_EQ(p.workspace.runningApplication(app)->processIdentifier(), app);
    EXPECT_EQ(p.workspace.runningApplication(static_cast<int>(getpid())), nullptr); // no window of ours
    EXPECT_EQ(p.workspace.runningApplication(0), nullptr);
}

TEST_F(Backend, ProcessTableFromProc)
{
    ProcessTable& table = p.processTable;
    const int count = table.listAllPids(nullptr, 0);
    ASSERT_GT(count, 0);
    std::vector<std::int32_t> buffer(static_cast<std::size_t>(count));
    const int filled = table.listAllPids(buffer.data(), count * 4);
    EXPECT_EQ(filled, count);
    buffer.resize(static_cast<std::size_t>(filled));
    EXPECT_NE(std::find(buffer.begin(), buffer.end(), static_cast<std::int32_t>(getpid())), buffer.end());
    // A short buffer is filled, never overrun.
    std::int32_t two[2] = {0, 0};
    EXPECT_EQ(table.listAllPids(two, 8), std::min(count, 2));

    char name[64];
    ASSERT_GT(table.name(static_cast<std::int32_t>(getpid()), name, sizeof name), 0);
    // Our binary's name is longer than the kernel's 15 bytes: argv[0] completes it.
    EXPECT_EQ(readText("/proc/self/comm"), "stowly_linux_te\n");
    EXPECT_EQ(std::string(name), "stowly_linux_tests");
    char tiny[4];
    EXPECT_EQ(table.name(static_cast<std::int32_t>(getpid()), tiny, sizeof tiny), 3);
    EXPECT_EQ(std::string(tiny).size(), 3u);
    EXPECT_EQ(table.name(999999999, name, sizeof name), 0);

    RusageInfo usage;
    TaskInfo task;
    EXPECT_NE(table.pidRusage(999999999, usage), 0);
    EXPECT_NE(table.pidTaskInfo(999999999, task), kTaskInfoSize);
}

TEST_F(Backend, LongProcessNamesComeFromArgv0)
{
    const std::string longName = dirs().root + "/stowly-long-process-name";
    ASSERT_EQ(symlink("/bin/sleep", longName.c_str()), 0);
    const int pid = apps.start({longName, "100000"});
    ASSERT_TRUE(waitUntil([&] { return readText("/proc/" + std::to_string(pid) + "/comm") == "stowly-long-pro\n"; }));
    char name[256];
    ASSERT_GT(p.processTable.name(pid, name, sizeof name), 0);
    EXPECT_EQ(std::string(name), "stowly-long-process-name");
    unlink(longName.c_str());
}

TEST_F(Backend, MemoryCountersMatchProc)
{
    const int app = apps.startTestWindow("memory-app", {"--alloc-mb", "40"});
    ASSERT_TRUE(waitForWindowTitled("memory-app"));
    ProcessTable& table = p.processTable;
    ASSERT_GT(table.listAllPids(nullptr, 0), 0); // a new pass: fresh readings
    RusageInfo usage;
    ASSERT_EQ(table.pidRusage(app, usage), 0);
    const auto independent = footprintOf(app);
    ASSERT_TRUE(independent);
    EXPECT_GT(usage.physFootprint, 40ull << 20);
    EXPECT_NEAR(static_cast<double>(usage.physFootprint), static_cast<double>(*independent), 0.1 * *independent);
    TaskInfo task;
    EXPECT_EQ(table.pidTaskInfo(app, task), kTaskInfoSize);
    EXPECT_GE(task.residentSize, usage.physFootprint / 2);

    // A zombie has no memory left and counts as terminated.
    const int zombie = apps.start({"true"});
    ASSERT_TRUE(waitUntil([&] {
        const std::string stat = readText("/proc/" + std::to_string(zombie) + "/stat");
        return stat.find(") Z") != std::string::npos;
    }));
    ASSERT_GT(table.listAllPids(nullptr, 0), 0);
    EXPECT_NE(table.pidRusage(zombie, usage), 0);
    EXPECT_NE(table.pidTaskInfo(zombie, task), kTaskInfoSize);
    EXPECT_FALSE(linuxdesktop::processIsAlive(zombie));

    // Kernel threads (kthreadd is pid 2 where the kernel's threads are visible) have no memory.
    if (readText("/proc/2/status").find("Name:\tkthreadd") != std::string::npos) {
        EXPECT_NE(table.pidRusage(2, usage), 0);
        EXPECT_NE(table.pidTaskInfo(2, task), kTaskInfoSize);
    }
}

TEST(LoginItem, WritesStatusAndRemovesTheAutostartEntry)
{
    linuxdesktop::XdgAutostart login;
    const std::string path = dirs().configHome + "/autostart/app.stowly.Stowly.desktop";
    ASSERT_EQ(linuxdesktop::XdgAutostart::entryPath(), path);
    login.unregisterMainApp();
    EXPECT_EQ(login.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(login.registerMainApp(), std::nullopt);
    const std::string text = readText(path);
    char self[4096] = {};
    ASSERT_GT(readlink("/proc/self/exe", self, sizeof self - 1), 0);
    EXPECT_NE(text.find("[Desktop Entry]\n"), std::string::npos);
    EXPECT_NE(text.find("\nExec=" + std::string(self) + "\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\nType=Application\n"), std::string::npos);
    EXPECT_EQ(login.status(), LoginItemStatus::enabled);

    // Switched off by the user in the session settings.
    {
        std::ofstream(path, std::ios::app) << "Hidden=true\n";
    }
    EXPECT_NE(login.status(), LoginItemStatus::enabled);
    EXPECT_EQ(login.registerMainApp(), std::nullopt);
    EXPECT_EQ(login.status(), LoginItemStatus::enabled);
    {
        std::ofstream(path, std::ios::app) << "X-GNOME-Autostart-enabled=false\n";
    }
    EXPECT_NE(login.status(), LoginItemStatus::enabled);

    EXPECT_EQ(login.unregisterMainApp(), std::nullopt);
    struct stat st {};
    EXPECT_NE(stat(path.c_str(), &st), 0);
    EXPECT_EQ(login.status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(login.unregisterMainApp(), std::nullopt);
}

TEST(LoginItem, QuotesAnExecutablePathWithSpacesAndQuotes)
{
    // Desktop Entry rules: a quoted argument escapes '"' as \", and the file format
    // doubles every backslash once more.
    linuxdesktop::XdgAutostart login("/opt/my apps/st\"owly 100%");
    ASSERT_EQ(login.registerMainApp(), std::nullopt);
    const std::string text = readText(linuxdesktop::XdgAutostart::entryPath());
    EXPECT_NE(text.find("\nExec=\"/opt/my apps/st\\\\\"owly 100%%\"\n"), std::string::npos) << text;
    EXPECT_EQ(login.unregisterMainApp(), std::nullopt);
}

TEST(LoginItem, ReplacesAnOldEntryInsteadOfAddingASecond)
{
    const std::string legacy = linuxdesktop::XdgAutostart::legacyEntryPath();
    ASSERT_NE(legacy, linuxdesktop::XdgAutostart::entryPath());
    {
        std::ofstream(legacy) << "[Desktop Entry]\nType=Application\nName=Stowly\nExec=/old/place/stowly\n";
    }
    linuxdesktop::XdgAutostart login("/usr/bin/stowly");
    EXPECT_EQ(login.status(), LoginItemStatus::enabled) << "an old version's entry still starts it";
    ASSERT_EQ(login.registerMainApp(), std::nullopt);
    struct stat st {};
    EXPECT_NE(stat(legacy.c_str(), &st), 0) << "the old entry is gone";
    const std::string text = readText(linuxdesktop::XdgAutostart::entryPath());
    EXPECT_NE(text.find("\nExec=/usr/bin/stowly\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("/old/place"), std::string::npos);
    // Registering again rewrites the one entry; a second path replaces the first.
    linuxdesktop::XdgAutostart moved("/home/me/build/bin/stowly");
    ASSERT_EQ(moved.registerMainApp(), std::nullopt);
    const std::string again = readText(linuxdesktop::XdgAutostart::entryPath());
    EXPECT_NE(again.find("\nExec=/home/me/build/bin/stowly\n"), std::string::npos) << again;
    EXPECT_EQ(again.find("/usr/bin/stowly"), std::string::npos);
    EXPECT_EQ(moved.unregisterMainApp(), std::nullopt);
    EXPECT_EQ(moved.status(), LoginItemStatus::notRegistered);
}

TEST(LoginItem, FailuresCarryTheSystemErrorText)
{
    const std::string saved = getenv("XDG_CONFIG_HOME");
    const std::string broken = dirs().root + "/config-broken";
    mkdir(broken.c_str(), 0700);
    std::ofstream(broken + "/autostart") << "a file where the directory should be\n";
    setenv("XDG_CONFIG_HOME", broken.c_str(), 1);
    linuxdesktop::XdgAutostart login;
    EXPECT_EQ(login.registerMainApp(), std::optional<std::string>("Not a directory"));
    EXPECT_EQ(login.unregisterMainApp(), std::optional<std::string>("Not a directory"));
    EXPECT_EQ(login.status(), LoginItemStatus::notRegistered);
    setenv("XDG_CONFIG_HOME", saved.c_str(), 1);
}

TEST(Preferences, StoredInQSettingsUnderTheConfigHome)
{
    {
        x11::X11Platform linux_;
        PreferenceStore& store = linux_.platform().preferences;
        EXPECT_EQ(store.string("neverWritten"), std::nullopt);
        store.setString("defaultAction", "hide");
        store.setString("enabledActions", "closeWindows,hide");
        EXPECT_EQ(store.string("defaultAction"), "hide");
        EXPECT_EQ(store.string("neverWritten"), std::nullopt);
    }
    const std::string file = readText(dirs().configHome + "/Stowly/Stowly.conf");
    EXPECT_NE(file.find("defaultAction=hide"), std::string::npos) << file;
    x11::X11Platform again;
    EXPECT_EQ(again.platform().preferences.string("enabledActions"), "closeWindows,hide");
}

TEST(UrlOpener, AnswersFalseWithoutAGuiApplication)
{
    x11::X11Platform linux_;
    EXPECT_FALSE(linux_.platform().urlOpener.openUrl("https://example.org/"));
}
