#pragma once

#include "platform/DispatchQueue.h"
#include "platform/Log.h"
#include "state/AppNotificationCenter.h"
#include "state/StoreLink.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velloway {

enum class CallAction { incomingCall, callStateChanged, callUpdate, callEnded };

/// The values read from one call event.
struct CallEvent {
    CallAction action = CallAction::callUpdate;
    /// In upper case.
    std::optional<std::string> state;
    /// Seconds.
    std::optional<std::int64_t> duration;
    /// Trimmed; empty means unknown.
    std::string number;
    std::optional<std::string> name;
};

/// Whether the event says that the call is over. Needs only `action`, `state` and `duration`: the other values
/// of such an event are never read.
bool isCallOver(CallAction action, const std::optional<std::string>& state,
                const std::optional<std::int64_t>& duration);

/// What one event does.
struct CallEffects {
    enum class Banner { unchanged, show, clear };
    /// The call is over: the banner goes and -1 is posted, whether or not the server is still there.
    bool isOver = false;
    Banner banner = Banner::unchanged;
    std::optional<std::int64_t> duration;

    bool operator==(const CallEffects&) const = default;
};

CallEffects decideCallEffects(const CallEvent& event);

/// Applies call events to the store and posts durations, in the order of the events.
class CallEvents {
public:
    CallEvents(DispatchQueue& main, std::weak_ptr<StoreLink> link, AppNotificationCenter& notifications,
               Log& log)
        : main_(main), link_(std::move(link)), notifications_(notifications), log_(log) {}

    /// Server queue.
    void handle(const CallEvent& event);

private:
    DispatchQueue& main_;
    std::weak_ptr<StoreLink> link_;
    AppNotificationCenter& notifications_;
    Log& log_;
};

} // namespace velloway
