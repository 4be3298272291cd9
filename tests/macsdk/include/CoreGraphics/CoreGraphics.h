// See dispatch/dispatch.h.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CGGeometry.h>

#pragma clang assume_nonnull begin

typedef struct __CGEvent* CGEventRef;
typedef struct __CGEventSource* CGEventSourceRef;
typedef uint16_t CGKeyCode;
typedef uint16_t UniChar;
typedef unsigned long UniCharCount;
typedef enum CGEventSourceStateID : int32_t {
    kCGEventSourceStatePrivate = -1,
    kCGEventSourceStateCombinedSessionState = 0,
    kCGEventSourceStateHIDSystemState = 1
} CGEventSourceStateID;
typedef enum CGEventTapLocation : uint32_t {
    kCGHIDEventTap = 0,
    kCGSessionEventTap = 1,
    kCGAnnotatedSessionEventTap = 2
} CGEventTapLocation;
typedef enum CGEventType : uint32_t {
    kCGEventLeftMouseDown = 1,
    kCGEventLeftMouseUp = 2,
    kCGEventRightMouseDown = 3,
    kCGEventRightMouseUp = 4,
    kCGEventMouseMoved = 5
} CGEventType;
typedef enum CGMouseButton : uint32_t { kCGMouseButtonLeft = 0, kCGMouseButtonRight = 1 } CGMouseButton;
typedef enum CGEventFlags : uint64_t {
    kCGEventFlagMaskShift = 0x20000,
    kCGEventFlagMaskControl = 0x40000,
    kCGEventFlagMaskAlternate = 0x80000,
    kCGEventFlagMaskCommand = 0x100000
} CGEventFlags;

extern "C" {
CGEventSourceRef _Nullable CGEventSourceCreate(CGEventSourceStateID stateID);
CGEventRef _Nullable CGEventCreate(CGEventSourceRef _Nullable source);
CGEventRef _Nullable CGEventCreateKeyboardEvent(CGEventSourceRef _Nullable source, CGKeyCode virtualKey,
                                                bool keyDown);
CGEventRef _Nullable CGEventCreateMouseEvent(CGEventSourceRef _Nullable source, CGEventType mouseType,
                                             CGPoint mouseCursorPosition, CGMouseButton mouseButton);
CGPoint CGEventGetLocation(CGEventRef _Nullable event);
void CGEventSetFlags(CGEventRef _Nullable event, CGEventFlags flags);
void CGEventKeyboardSetUnicodeString(CGEventRef _Nullable event, UniCharCount stringLength,
                                     const UniChar* _Nullable unicodeString);
void CGEventPost(CGEventTapLocation tap, CGEventRef _Nullable event);
}

#pragma clang assume_nonnull end
