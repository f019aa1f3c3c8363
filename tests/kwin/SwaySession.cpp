// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "SwaySession.h"

#include "TestBed.h"

namespace stowly::kwintest {

using namespace std::chrono_literals;
namespace tb = stowly::testbed;

SwaySession::SwaySession(const std::string& parentDir) : m_folder(parentDir, "sway")
{
    if (!m_folder.ok()) {
        m_error = "cannot make a temporary folder";
        return;
    }
    const std::string& root = m_folder.root();
    const std::string& runtime = m_folder.runtime();
    // sway starts Xwayland at once (not on the first X11 client) and tells a program it
    // starts both displays.
    const std::string report = root + "/displays";
    tb::writeFile(root + "/config",
                  "xwayland force\nexec sh -c 'echo \"$WAYLAND_DISPLAY $DISPLAY\" > \"" + report + "\"'\n");
    const std::string log = root + "/sway.log";
    m_sway = tb::spawn({"env", "-u", "WAYLAND_DISPLAY", "-u", "DISPLAY", "-u", "SWAYSOCK", "XDG_RUNTIME_DIR=" + runtime,
                        "HOME=" + root, "WLR_BACKENDS=headless", "WLR_LIBINPUT_NO_DEVICES=1", "WLR_RENDERER=pixman",
                        "unshare", "--user", "--map-user=1000", "--map-group=1000", "sway", "-c", root + "/config"},
                       log);
    if (!tb::waitUntil([&] { return tb::readText(report).find(' ') != std::string::npos; }, 20s)) {
        m_error = "sway did not start a program with its displays; its log: " + tb::readText(log);
        return;
    }
    const std::string displays = tb::readText(report);
    const auto space = displays.find(' ');
    m_socketPath = runtime + "/" + displays.substr(0, space);
    m_x11Display = displays.substr(space + 1, displays.find('\n') - space - 1);
    if (m_x11Display.empty()) {
        m_error = "sway started no Xwayland; its log: " + tb::readText(log);
        return;
    }
    m_ok = true;
}

SwaySession::~SwaySession()
{
    tb::kill(m_sway);
}

} // namespace stowly::kwintest
