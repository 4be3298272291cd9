#include "hosts/mac/MacAccessibility.h"

#include "hosts/mac/NativeRef.h"

#include <ApplicationServices/ApplicationServices.h>

namespace velloway {

bool MacAccessibility::isTrusted() {
    return AXIsProcessTrustedWithOptions(nullptr) != 0;
}

bool MacAccessibility::isTrustedWithPrompt() {
    const void* key = kAXTrustedCheckOptionPrompt;
    const void* value = kCFBooleanTrue;
    const auto options = CoreFoundationRef<CFDictionaryRef>::adopt(CFDictionaryCreate(
        nullptr, &key, &value, 1, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    return AXIsProcessTrustedWithOptions(options.get()) != 0;
}

} // namespace velloway
