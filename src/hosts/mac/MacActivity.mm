#include "hosts/mac/MacActivity.h"

#import <Foundation/Foundation.h>

namespace velloway {

namespace {

class Activity {
public:
    Activity()
        : token_([NSProcessInfo.processInfo
              beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                                reason:@"A phone is connected"]) {}
    ~Activity() {
        @autoreleasepool {
            [NSProcessInfo.processInfo endActivity:token_];
        }
    }
    Activity(const Activity&) = delete;
    Activity& operator=(const Activity&) = delete;

private:
    id<NSObject> token_;
};

} // namespace

std::shared_ptr<void> beginConnectedActivity() {
    @autoreleasepool {
        return std::make_shared<Activity>();
    }
}

} // namespace velloway
