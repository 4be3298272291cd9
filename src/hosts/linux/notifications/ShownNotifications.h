#pragma once

#include "platform/UserNotificationCenter.h"

#include <QtGlobal>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace velloway {

/// The register of what is on screen, by identifier and by the id that the service gave. Main thread.
class ShownNotifications {
public:
    struct Shown {
        /// On screen by the service when not 0.
        uint serviceId = 0;
        bool isOnBanner = false;
        NotificationContent content;
        std::optional<TextInputNotificationAction> reply;
        /// Those that the delegate decided on.
        unsigned options = 0;
        /// The user has used it already: its closing is not a dismissal.
        bool wasAnswered = false;
        /// Higher for what was handed over later.
        std::uint64_t turn = 0;
    };

    /// Null when nothing of that identifier is on screen.
    Shown* find(const std::string& identifier);
    /// Null when the service does not show anything of ours under that id.
    const std::string* identifierOf(uint serviceId) const;

    /// The service shows `content` under `serviceId`. Only the latest few thousand are kept: older ones stay on
    /// screen, but can no longer be replaced, closed and answered.
    void addFromService(const std::string& identifier, Shown shown);
    void addOnBanner(const std::string& identifier, Shown shown);

    /// In the order in which they were handed over.
    std::vector<std::pair<std::string, Shown>> onBanners() const;

    /// Forgets what the service shows. Returns its id, or 0 when it does not show anything.
    uint takeFromService(const std::string& identifier);
    /// Forgets what is on our own banner. Returns whether there was anything.
    bool takeFromBanner(const std::string& identifier);
    /// Another service has taken over: all ids are worthless.
    void serviceChanged();

    // A service may report on a notification before it has answered with its id. A bounded number of such
    // reports is kept until the id is known.
    void keepEarly(uint serviceId, std::function<void()> deliver);
    void deliverEarly(uint serviceId);
    void dropEarly() { early_.clear(); }

private:
    struct EarlySignal {
        uint serviceId;
        std::function<void()> deliver;
    };

    void forgetOldestFromService();
    void eraseIfGone(const std::string& identifier);

    std::map<std::string, Shown> shown_;
    std::unordered_map<uint, std::string> identifiers_;
    std::vector<EarlySignal> early_;
};

} // namespace velloway
