#pragma once

#include "platform/Host.h"
#include "platform/Log.h"
#include "platform/UserNotificationCenter.h"
#include "state/Records.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace velloway {

/// Turns what the phone reports into notifications on the desktop. The ports must outlive it.
class NotificationManager {
public:
    NotificationManager(UserNotificationCenter& center, const Host& host, Log& log)
        : center_(center), host_(host), log_(log) {}

    /// Shows a mirrored notification, unless one with the same body came less than three seconds ago and
    /// this one knows the sender only by number. Its identifier doubles as the address of a reply. Main thread.
    void post(const NotifPayload& payload);

    /// Shows one of the program's own messages. Any thread.
    void postSimple(std::string_view title, std::string_view body);

    /// Shows how far an incoming file is; the same `identifier` replaces the notification in place. A
    /// `progress` whose percentage is not a 64-bit whole number is fatal. Main thread.
    void postFileProgress(std::string_view fileName, double progress, std::string_view identifier);

    /// How many bodies the de-duplication now remembers. Main thread.
    std::size_t rememberedBodies() const { return recentBodies_.size(); }

private:
    struct Recent {
        Instant date;
        NotifPayload payload;
    };

    static bool looksLikePhoneNumber(std::string_view text);

    UserNotificationCenter& center_;
    const Host& host_;
    Log& log_;
    /// By body, with blanks cut from both ends. The keys are parts of the bodies that the entries hold.
    std::unordered_map<std::string_view, Recent> recentBodies_;
};

} // namespace velloway
