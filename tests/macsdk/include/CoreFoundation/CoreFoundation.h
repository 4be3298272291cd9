// See dispatch/dispatch.h.
#pragma once

#include <stdint.h>

#pragma clang assume_nonnull begin

typedef unsigned char Boolean;
typedef signed long CFIndex;
typedef uint32_t CFStringEncoding;
enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };
typedef const void* CFTypeRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFError* CFErrorRef;
struct CFDictionaryKeyCallBacks;
struct CFDictionaryValueCallBacks;

extern "C" {
extern const CFBooleanRef kCFBooleanTrue;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding);
CFStringRef _Nullable CFErrorCopyDescription(CFErrorRef error);
CFDictionaryRef _Nullable CFDictionaryCreate(CFAllocatorRef _Nullable allocator,
                                             const void* _Nullable* _Nullable keys,
                                             const void* _Nullable* _Nullable values, CFIndex count,
                                             const CFDictionaryKeyCallBacks* _Nullable keyCallBacks,
                                             const CFDictionaryValueCallBacks* _Nullable valueCallBacks);
}

#pragma clang assume_nonnull end
