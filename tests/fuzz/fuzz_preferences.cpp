// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// A preference file with any bytes in it: the settings logic must read some valid state
// out of it and keep working when it writes back.

#include "FuzzCheck.h"
#include "SettingsPreferenceStore.h"
#include "core/ActionSettings.h"
#include "core/AppPreferences.h"

#include <cstdlib>
#include <fstream>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

using namespace stowly;

namespace {

std::string g_file;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    char pattern[] = "/tmp/stowly-fuzz-prefs-XXXXXX";
    const char* root = mkdtemp(pattern);
    if (root == nullptr)
        std::abort();
    setenv("XDG_CONFIG_HOME", root, 1);
    mkdir((std::string(root) + "/Stowly").c_str(), 0700);
    g_file = std::string(root) + "/Stowly/Stowly.conf";
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    {
        std::ofstream out(g_file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    linuxdesktop::SettingsPreferenceStore store;
    const DefaultAction preferred = AppPreferences::preferredDefaultAction(store);
    const ActionSet enabled = ActionSettings::enabledActions(store);
    const auto items = ActionSettings::pickerItems(store);
    STOWLY_FUZZ_CHECK(items.size() <= DefaultAction::allCases().size());
    const DefaultAction selected = ActionSettings::selectedAction(store);
    (void)preferred;
    (void)enabled;
    // Acting on the garbage must leave a readable, consistent state.
    ActionSettings::toggleAction(store, selected, false); // switched on
    STOWLY_FUZZ_CHECK(ActionSettings::enabledActions(store).count(selected) == 1);
    STOWLY_FUZZ_CHECK(AppPreferences::parseEnabledActions(AppPreferences::storedEnabledActions(store)) ==
                      ActionSettings::enabledActions(store));
    return 0;
}
