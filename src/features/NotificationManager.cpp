#include "features/NotificationManager.h"

#include "platform/Fatal.h"
#include "state/Uuid.h"
#include "text/Digits.h"
#include "text/Graphemes.h"
#include "text/Trim.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>

namespace velloway {

namespace {

using namespace std::chrono_literals;

constexpr auto dedupWindow = 3s;
constexpr auto pruneAge = 30s;

/// Cut toward zero.
std::int64_t wholePercent(double progress) {
    constexpr double limit = 9223372036854775808.0;
    const double percent = progress * 100.0;
    if (!(percent >= -limit && percent < limit)) {
        fatal("The progress of a file is not a whole number of percent");
    }
    return static_cast<std::int64_t>(percent);
}

NotificationContent contentOf(const NotifPayload& payload) {
    NotificationContent content{.body = payload.body,
                                .hasDefaultSound = true,
                                .threadIdentifier = payload.app,
                                .categoryIdentifier = "REPLY_CATEGORY"};
    if (payload.app.empty() || payload.app == "Unknown") {
        content.title = payload.title.empty() ? "Velloway" : payload.title;
    } else {
        content.title = payload.app;
        content.subtitle = payload.title;
    }
    return content;
}

/// The phone's own key, or else one made of what is shown.
std::string identifierOf(const NotifPayload& payload) {
    if (payload.key) {
        return *payload.key;
    }
    std::string identifier = payload.app + ":" + payload.title + ":";
    return identifier.append(trimBlanks(payload.body));
}

} // namespace

void NotificationManager::post(const NotifPayload& payload) {
    const std::string_view trimmed = trimBlanks(payload.body);
    const Instant now = host_.now();

    const auto earlier = recentBodies_.find(trimmed);
    if (earlier != recentBodies_.end() && now - earlier->second.date < dedupWindow) {
        if (looksLikePhoneNumber(payload.title)) {
            return;
        }
        const std::string identifier = identifierOf(earlier->second.payload);
        center_.removeDelivered({identifier});
        center_.removePending({identifier});
    }

    center_.add({.identifier = identifierOf(payload), .content = contentOf(payload)},
                [&log = log_](const std::optional<std::string>& error) {
                    if (error) {
                        log.line({"[Notifications] Post error: ", *error});
                    }
                });

    // Not assigned: the key that is there belongs to the old body.
    recentBodies_.erase(trimmed);
    recentBodies_.emplace(trimmed, Recent{now, payload});
    std::erase_if(recentBodies_, [&](const auto& entry) { return now - entry.second.date >= pruneAge; });
}

void NotificationManager::postSimple(std::string_view title, std::string_view body) {
    center_.add({.identifier = Uuid::random().text(),
                 .content = {.title = std::string(title), .body = std::string(body), .hasDefaultSound = true}},
                nullptr);
}

void NotificationManager::postFileProgress(std::string_view fileName, double progress,
                                           std::string_view identifier) {
    const bool isDone = progress >= 1.0;
    std::string body(fileName);
    body.append(" (").append(std::to_string(wholePercent(progress))).append("%)");
    center_.add({.identifier = std::string(identifier),
                 .content = {.title = isDone ? "File Received" : "Receiving File...",
                             .body = std::move(body),
                             .hasDefaultSound = isDone}},
                nullptr);
}

bool NotificationManager::looksLikePhoneNumber(std::string_view text) {
    if (firstGrapheme(text) == "+") {
        return true;
    }
    const auto characters = graphemes(text);
    const auto digits = std::count_if(characters.begin(), characters.end(), isNumberCharacter);
    return digits >= 7 && static_cast<double>(digits) / static_cast<double>(characters.size()) > 0.8;
}

} // namespace velloway
