#include "hosts/mac/SystemDefinedEvent.h"

#import <AppKit/AppKit.h>

namespace velloway {

CGEventRef copySystemDefinedEvent(std::uint64_t modifierFlags, std::int16_t subtype, std::int64_t data1,
                                  std::int64_t data2) {
    @autoreleasepool {
        const CGEventRef native = [NSEvent otherEventWithType:NSEventTypeSystemDefined
                                                     location:NSPoint{0, 0}
                                                modifierFlags:modifierFlags
                                                    timestamp:0
                                                 windowNumber:0
                                                      context:nil
                                                      subtype:subtype
                                                        data1:data1
                                                        data2:data2]
                                      .CGEvent;
        // The event object owns its postable form and goes with the pool.
        if (native != nullptr) {
            CFRetain(native);
        }
        return native;
    }
}

} // namespace velloway
