#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// Empty for bytes that are no UTF-8.
inline NSString* _Nonnull nsString(std::string_view text) {
    return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding] ?: @"";
}

/// Empty for nothing, and for text that has no UTF-8 form.
inline std::string stdString(NSString* _Nullable text) {
    const char* bytes = text.UTF8String;
    return bytes != nullptr ? std::string(bytes, [text lengthOfBytesUsingEncoding:NSUTF8StringEncoding])
                            : std::string();
}

inline NSArray<NSString*>* _Nonnull nsStrings(const std::vector<std::string>& texts) {
    NSMutableArray<NSString*>* strings = [[NSMutableArray alloc] init];
    for (const std::string& text : texts) {
        [strings addObject:nsString(text)];
    }
    return strings;
}

} // namespace velloway
