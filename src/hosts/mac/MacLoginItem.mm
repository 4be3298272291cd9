#include "hosts/mac/MacLoginItem.h"

#include "hosts/mac/MacText.h"

#import <ServiceManagement/ServiceManagement.h>

namespace velloway {

namespace {

std::optional<std::string> failure(BOOL hasWorked, NSError* error) {
    return hasWorked ? std::nullopt : std::optional(stdString(error.localizedDescription));
}

} // namespace

LoginItemStatus MacLoginItem::status() const {
    switch (SMAppService.mainAppService.status) {
    case SMAppServiceStatusEnabled:
        return LoginItemStatus::enabled;
    case SMAppServiceStatusRequiresApproval:
        return LoginItemStatus::requiresApproval;
    case SMAppServiceStatusNotFound:
        return LoginItemStatus::notFound;
    case SMAppServiceStatusNotRegistered:
        break;
    }
    return LoginItemStatus::notRegistered;
}

std::optional<std::string> MacLoginItem::registerItem() {
    NSError* error = nil;
    const BOOL hasWorked = [SMAppService.mainAppService registerAndReturnError:&error];
    return failure(hasWorked, error);
}

std::optional<std::string> MacLoginItem::unregisterItem() {
    NSError* error = nil;
    const BOOL hasWorked = [SMAppService.mainAppService unregisterAndReturnError:&error];
    return failure(hasWorked, error);
}

} // namespace velloway
