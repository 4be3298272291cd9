#pragma once

#include "platform/UserNotificationCenter.h"

#include <QString>
#include <QStringList>

#include <cstddef>

namespace velloway {

/// What a notification service says it can do.
struct NotificationCapabilities {
    bool body = false;
    bool bodyMarkup = false;
    bool actions = false;
    bool inlineReply = false;
    /// Groups the notifications of one program by where they come from.
    bool originName = false;

    static NotificationCapabilities from(const QStringList& names);
};

struct NotificationText {
    QString summary;
    QString body;
};

/// The longest texts that are shown, in UTF-16 units.
inline constexpr qsizetype titleLimit = 500;
inline constexpr qsizetype bodyLimit = 4000;

/// How many bytes of a text can matter to what is shown of it. No UTF-16 unit is made of fewer than one byte
/// nor more than three.
constexpr std::size_t readBytes(qsizetype limit) {
    return std::size_t(limit) * 3 + 3;
}

/// Text as a service can take it: no control characters but line breaks and tabs (a NUL would end the text on
/// its way), and no longer than `limit` UTF-16 units, the last of which is then an ellipsis.
QString displayableText(const std::string& text, qsizetype limit);

/// The two texts of a notification for a service with these capabilities. Markup is escaped where the service
/// would read it as such; without a body everything is folded into the summary.
NotificationText notificationText(const NotificationContent& content,
                                  const NotificationCapabilities& capabilities);

} // namespace velloway
