#include "hosts/mac/FakeCoreFoundation.h"

#include <ApplicationServices/ApplicationServices.h>

#include <cstring>
#include <map>

/// Tells apart the constants that are not counted.
struct __CFBoolean {};
struct __CFString {};

struct CFDictionaryKeyCallBacks {};
struct CFDictionaryValueCallBacks {};

namespace {
const __CFBoolean trueValue;
const __CFString promptKey;
} // namespace

const CFBooleanRef kCFBooleanTrue = &trueValue;
const CFStringRef kAXTrustedCheckOptionPrompt = &promptKey;
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};

namespace velloway::test {

FakeAccessibility fakeAccessibility;

namespace {

class Dictionary : public FakeObject {
public:
    std::map<const void*, const void*> entries;
};

FakeObject& object(const void* native) {
    return *static_cast<FakeObject*>(const_cast<void*>(native));
}

} // namespace

extern "C" {

CFTypeRef CFRetain(CFTypeRef native) {
    object(native).retain();
    return native;
}
void CFRelease(CFTypeRef native) {
    object(native).release();
}
CFIndex CFStringGetLength(CFStringRef string) {
    return static_cast<CFIndex>(static_cast<FakeText&>(object(string)).text.size());
}
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF8 ? length * 3 : -1;
}
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding) {
    const std::string& text = static_cast<FakeText&>(object(string)).text;
    if (encoding != kCFStringEncodingUTF8 || static_cast<CFIndex>(text.size()) >= size) {
        return 0;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return 1;
}
CFStringRef CFErrorCopyDescription(CFErrorRef error) {
    const std::string& text = static_cast<FakeText&>(object(error)).text;
    return text.empty() ? nullptr : reinterpret_cast<CFStringRef>(new FakeText(text));
}
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex count,
                                   const CFDictionaryKeyCallBacks*, const CFDictionaryValueCallBacks*) {
    auto* const dictionary = new Dictionary;
    for (CFIndex index = 0; index < count; ++index) {
        dictionary->entries[keys[index]] = values[index];
    }
    return reinterpret_cast<CFDictionaryRef>(dictionary);
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
    ++fakeAccessibility.questions;
    if (options != nullptr) {
        const auto& entries = static_cast<Dictionary&>(object(options)).entries;
        const auto found = entries.find(kAXTrustedCheckOptionPrompt);
        const bool prompts = found != entries.end() && found->second == kCFBooleanTrue;
        fakeAccessibility.prompts += prompts ? 1 : 0;
        if (prompts && fakeAccessibility.onPrompt) {
            fakeAccessibility.onPrompt();
        }
    }
    return fakeAccessibility.isTrusted ? 1 : 0;
}

} // extern "C"

} // namespace velloway::test
