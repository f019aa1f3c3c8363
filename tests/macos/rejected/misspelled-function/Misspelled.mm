// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Calls an Accessibility function under a wrong name that the declaration below
// makes compile; only the link against the framework stubs can refuse it.
#include <ApplicationServices/ApplicationServices.h>

extern "C" AXError AXUIElementCopyAttributeValues2(AXUIElementRef, CFStringRef, CFTypeRef*);

bool focusedWindowOf(pid_t pid)
{
    AXUIElementRef app = AXUIElementCreateApplication(pid);
    CFTypeRef window = nullptr;
    const AXError error = AXUIElementCopyAttributeValues2(app, kAXFocusedWindowAttribute, &window);
    if (window)
        CFRelease(window);
    CFRelease(app);
    return error == kAXErrorSuccess;
}
