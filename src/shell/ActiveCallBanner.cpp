#include "shell/ActiveCallBanner.h"

#include "tabs/Style.h"
#include "tabs/calls/CallsModel.h"
#include "text/Utf8.h"

#include <array>
#include <memory>
#include <utility>
#include <variant>

namespace velloway {

ActiveCallBanner::ActiveCallBanner(std::string callName, std::string callNumber, WebSocketServer& server,
                                   AppNotificationCenter& notifications)
    : name(std::move(callName)),
      number(std::move(callNumber)),
      server_(server),
      durationUpdates_(notifications.observe(AppNotification::callDurationUpdated, [this](const auto& object) {
          const auto* seconds = std::get_if<std::int64_t>(&object);
          if (seconds && *seconds >= 0) {
              duration.set(*seconds);
          }
      })) {}

BannerText ActiveCallBanner::text() const {
    BannerText text{.firstLine = std::string(head(name.empty() ? number : name, rowBytes)),
                    .lastLine = duration.get() >= 0 ? formatDuration(duration.get()) : "Connecting..."};
    if (!name.empty() && name != number) {
        text.secondLine = head(number, rowBytes);
    }
    return text;
}

void ActiveCallBanner::toggleMute() {
    isMuted.set(!isMuted.get());
    server_.toggleMute(isMuted.get());
}

void ActiveCallBanner::hangup() {
    server_.hangupCall();
}

CallPanel ActiveCallBanner::panel() const {
    // The buttons have no tooltips; a screen reader still needs their names.
    return {.iconSymbol = iconSymbol,
            .text = text(),
            .isMuted = isMuted.get(),
            .left = {.symbol = muteSymbol(), .name = isMuted.get() ? "Unmute" : "Mute"},
            .right = {.symbol = hangupSymbol, .name = "Hang up"}};
}

Subscription ActiveCallBanner::observe(std::function<void()> changed) {
    auto both = std::make_shared<std::array<Subscription, 2>>(
        std::array{duration.observe([changed](std::int64_t) { changed(); }),
                   isMuted.observe([changed](bool) { changed(); })});
    return Subscription([both] { *both = {}; });
}

} // namespace velloway
