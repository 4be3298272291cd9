#include "features/CallEvents.h"
namespace velloway {
bool isCallOver(CallAction, const std::optional<std::string>&, const std::optional<std::int64_t>&) {
    return false;
}
CallEffects decideCallEffects(const CallEvent&) {
    return {};
}
void CallEvents::handle(const CallEvent&) {}
} // namespace velloway
