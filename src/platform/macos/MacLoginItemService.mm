// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "MacLoginItemService.h"

#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

namespace stowly::macos {
namespace {

// The failure's own localized text; an error without one still reads as a failure.
std::string describe(NSError* error)
{
    NSString* text = error.localizedDescription;
    const char* utf8 = text != nil ? text.UTF8String : nullptr;
    return utf8 != nullptr && *utf8 != '\0' ? std::string(utf8) : std::string("Unknown error.");
}

} // namespace

LoginItemStatus MacLoginItemService::status()
{
    switch (SMAppService.mainAppService.status) {
    case SMAppServiceStatusNotRegistered: return LoginItemStatus::notRegistered;
    case SMAppServiceStatusEnabled: return LoginItemStatus::enabled;
    case SMAppServiceStatusRequiresApproval: return LoginItemStatus::requiresApproval;
    case SMAppServiceStatusNotFound: return LoginItemStatus::notFound;
    }
    // A status newer than this SDK: not launching at login as far as we can tell.
    return LoginItemStatus::notFound;
}

std::optional<std::string> MacLoginItemService::registerMainApp()
{
    NSError* error = nil;
    if ([SMAppService.mainAppService registerAndReturnError:&error])
        return std::nullopt;
    return describe(error);
}

std::optional<std::string> MacLoginItemService::unregisterMainApp()
{
    NSError* error = nil;
    if ([SMAppService.mainAppService unregisterAndReturnError:&error])
        return std::nullopt;
    return describe(error);
}

} // namespace stowly::macos
