#include "features/CallEvents.h"

namespace velloway {

bool isCallOver(CallAction action, const std::optional<std::string>& state,
                const std::optional<std::int64_t>& duration) {
    return action == CallAction::callEnded || state == "IDLE" ||
           (action == CallAction::callUpdate && duration == -1);
}

CallEffects decideCallEffects(const CallEvent& event) {
    if (isCallOver(event.action, event.state, event.duration)) {
        return {.isOver = true, .banner = CallEffects::Banner::clear};
    }
    CallEffects effects{.duration = event.duration};
    const bool isRinging = event.action == CallAction::incomingCall || event.state == "RINGING";
    if (isRinging && !event.number.empty()) {
        effects.banner = CallEffects::Banner::show;
    } else if (event.state == "OFFHOOK") {
        effects.banner = CallEffects::Banner::clear;
    }
    return effects;
}

void CallEvents::handle(const CallEvent& event) {
    const CallEffects effects = decideCallEffects(event);
    if (effects.isOver) {
        main_.async([link = link_, &notifications = notifications_] {
            const auto alive = link.lock();
            if (const auto store = alive ? alive->historyStore.lock() : nullptr) {
                store->incomingCallInfo.set(std::nullopt);
            }
            notifications.post(AppNotification::callDurationUpdated, std::int64_t{-1});
        });
        return;
    }
    if (effects.banner == CallEffects::Banner::show) {
        log_.line({"[WebSocketServer] Setting Banner Info: ", event.number});
        withStore(main_, link_, [info = IncomingCallInfo{event.number, event.name}](HistoryStore& store) {
            store.incomingCallInfo.set(info);
        });
    } else if (effects.banner == CallEffects::Banner::clear) {
        withStore(main_, link_, [](HistoryStore& store) { store.incomingCallInfo.set(std::nullopt); });
    }
    if (effects.duration) {
        main_.async([&notifications = notifications_, duration = *effects.duration] {
            notifications.post(AppNotification::callDurationUpdated, duration);
        });
    }
}

} // namespace velloway
