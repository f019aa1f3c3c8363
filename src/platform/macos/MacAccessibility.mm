// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The platform headers come before the system ones: HIServices defines macros such as
// kAXWindowsAttribute that would otherwise rewrite the constants declared there.
#include "MacAccessibility.h"

#include "MacCFHelpers.h"

#import <ApplicationServices/ApplicationServices.h>

#include <string>
#include <utility>

namespace stowly::macos {
namespace {

// Holds one reference to an AXUIElement for as long as the logic keeps the handle.
class MacAXElement final : public AXElement {
public:
    // Takes over the caller's reference.
    explicit MacAXElement(AXUIElementRef element) : m_element(element) {}
    ~MacAXElement() override
    {
        if (m_element != nullptr)
            CFRelease(m_element);
    }
    MacAXElement(const MacAXElement&) = delete;
    MacAXElement& operator=(const MacAXElement&) = delete;

    AXUIElementRef element() const { return m_element; }

private:
    AXUIElementRef m_element;
};

AXElementRef retainElement(AXUIElementRef element)
{
    CFRetain(element);
    return std::make_shared<MacAXElement>(element);
}

// Only handles made here can reach the API; anything else is an illegal argument.
AXUIElementRef axElement(const AXElementRef& handle)
{
    const auto* mac = dynamic_cast<const MacAXElement*>(handle.get());
    return mac != nullptr ? mac->element() : nullptr;
}

std::string typeName(CFTypeID type)
{
    const auto description = adoptCF(CFCopyTypeIDDescription(type));
    return toUtf8(description.get());
}

// A copied attribute value as the logic sees it. Borrows `value`; the caller releases it.
AXValue toAXValue(CFTypeRef value)
{
    if (value == nullptr)
        return AXAbsent{};

    const CFTypeID type = CFGetTypeID(value);
    if (type == CFStringGetTypeID())
        return toUtf8(static_cast<CFStringRef>(value));
    if (type == CFBooleanGetTypeID())
        return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
    if (type == CFNumberGetTypeID()) {
        double number = 0;
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberDoubleType, &number);
        return AXNumber{number};
    }
    if (type == AXUIElementGetTypeID())
        return retainElement(static_cast<AXUIElementRef>(value));
    if (type == CFArrayGetTypeID()) {
        // A list of UI elements only when every entry is one; a mixed array is "other".
        const auto array = static_cast<CFArrayRef>(value);
        const CFIndex count = CFArrayGetCount(array);
        const CFTypeID elementType = AXUIElementGetTypeID();
        for (CFIndex i = 0; i < count; ++i) {
            const CFTypeRef item = CFArrayGetValueAtIndex(array, i);
            if (item == nullptr || CFGetTypeID(item) != elementType)
                return AXOther{typeName(type)};
        }
        AXElementList elements;
        elements.reserve(static_cast<std::size_t>(count));
        for (CFIndex i = 0; i < count; ++i)
            elements.push_back(
                retainElement(static_cast<AXUIElementRef>(const_cast<void*>(CFArrayGetValueAtIndex(array, i)))));
        return elements;
    }
    return AXOther{typeName(type)};
}

// A new Core Foundation value for an attribute write, or null for values that have
// no Core Foundation form (absent, other, a foreign element handle).
CFOwned<CFTypeRef> toCFValue(const AXValue& value)
{
    struct Converter {
        CFOwned<CFTypeRef> operator()(const AXAbsent&) const { return nullptr; }
        CFOwned<CFTypeRef> operator()(const AXOther&) const { return nullptr; }
        CFOwned<CFTypeRef> operator()(const std::string& text) const
        {
            return CFOwned<CFTypeRef>(makeCFString(text).release());
        }
        CFOwned<CFTypeRef> operator()(bool flag) const
        {
            const CFBooleanRef boolean = flag ? kCFBooleanTrue : kCFBooleanFalse;
            return CFOwned<CFTypeRef>(CFRetain(boolean));
        }
        CFOwned<CFTypeRef> operator()(const AXNumber& number) const
        {
            const double raw = number.value;
            return CFOwned<CFTypeRef>(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &raw));
        }
        CFOwned<CFTypeRef> operator()(const AXElementRef& handle) const
        {
            const AXUIElementRef element = axElement(handle);
            return element != nullptr ? CFOwned<CFTypeRef>(CFRetain(element)) : nullptr;
        }
        CFOwned<CFTypeRef> operator()(const AXElementList& handles) const
        {
            std::vector<const void*> elements;
            elements.reserve(handles.size());
            for (const AXElementRef& handle : handles) {
                const AXUIElementRef element = axElement(handle);
                if (element == nullptr)
                    return nullptr;
                elements.push_back(element);
            }
            return CFOwned<CFTypeRef>(CFArrayCreate(kCFAllocatorDefault, elements.data(),
                                                    static_cast<CFIndex>(elements.size()), &kCFTypeArrayCallBacks));
        }
    };
    return std::visit(Converter{}, value);
}

} // namespace

AXElementRef MacAccessibility::createApplication(std::int32_t processIdentifier)
{
    // Never null for a pid; the element is merely useless for a process with no
    // accessible interface, and every call on it then fails with the platform's code.
    const AXUIElementRef application = AXUIElementCreateApplication(processIdentifier);
    if (application == nullptr)
        return nullptr;
    return std::make_shared<MacAXElement>(application);
}

AXError MacAccessibility::copyAttributeValue(const AXElementRef& element, const std::string& attribute, AXValue& value)
{
    const AXUIElementRef target = axElement(element);
    const auto name = makeCFString(attribute);
    if (target == nullptr || name == nullptr)
        return kAXErrorIllegalArgument;

    CFTypeRef raw = nullptr;
    const ::AXError code = AXUIElementCopyAttributeValue(target, name.get(), &raw);
    // Owned from here on, whatever the code says, so that nothing leaks on failure.
    const auto copied = adoptCF(raw);
    if (code != ::kAXErrorSuccess)
        return static_cast<AXError>(code);
    value = toAXValue(copied.get());
    return kAXErrorSuccess;
}

AXError MacAccessibility::setAttributeValue(const AXElementRef& element, const std::string& attribute,
                                            const AXValue& value)
{
    const AXUIElementRef target = axElement(element);
    const auto name = makeCFString(attribute);
    const auto cfValue = toCFValue(value);
    if (target == nullptr || name == nullptr || cfValue == nullptr)
        return kAXErrorIllegalArgument;
    return static_cast<AXError>(AXUIElementSetAttributeValue(target, name.get(), cfValue.get()));
}

AXError MacAccessibility::performAction(const AXElementRef& element, const std::string& action)
{
    const AXUIElementRef target = axElement(element);
    const auto name = makeCFString(action);
    if (target == nullptr || name == nullptr)
        return kAXErrorIllegalArgument;
    return static_cast<AXError>(AXUIElementPerformAction(target, name.get()));
}

bool MacAccessibilityTrust::isProcessTrusted(bool prompt)
{
    // Exactly one entry, keyed by the option's string value. The call answers at once;
    // a prompt the system may show does not wait for the user.
    const auto key = makeCFString("AXTrustedCheckOptionPrompt");
    const void* keys[] = {key.get()};
    const void* values[] = {prompt ? kCFBooleanTrue : kCFBooleanFalse};
    const auto options = adoptCF(CFDictionaryCreate(kCFAllocatorDefault, keys, values, 1,
                                                    &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    return AXIsProcessTrustedWithOptions(options.get()) != 0;
}

} // namespace stowly::macos
