#include "hosts/linux/notifications/BannerFallback.h"

#include "hosts/linux/notifications/NotificationText.h"

#include <utility>

namespace velloway {

namespace {

ReplyField replyFieldOf(const TextInputNotificationAction& action) {
    return {QString::fromStdString(action.textInputPlaceholder),
            QString::fromStdString(action.textInputButtonTitle)};
}

} // namespace

bool BannerFallback::show(const std::string& identifier, const NotificationContent& content,
                          const std::optional<TextInputNotificationAction>& reply) {
    if (!canShow()) {
        return false;
    }
    NotificationBanner::Content shown{.title = displayableText(content.title, titleLimit),
                                      .subtitle = displayableText(content.subtitle.value_or(""), titleLimit),
                                      .body = displayableText(content.body, bodyLimit)};
    NotificationPanels::BannerEvents events;
    if (reply) {
        shown.reply = replyFieldOf(*reply);
        events.replied = [this, identifier, action = reply->identifier](const QString& text) {
            events_.replied(identifier, action, text);
        };
    }
    events.clicked = [this, identifier] { events_.clicked(identifier); };
    events.dismissed = [this, identifier] { events_.dismissed(identifier); };
    events.gone = [this, identifier] { events_.gone(identifier); };
    return panels_.showBanner(identifier, shown, std::move(events));
}

void BannerFallback::openReply(const std::string& identifier, const NotificationContent& content,
                               const TextInputNotificationAction& reply) {
    const bool hasSender = content.subtitle && !content.subtitle->empty();
    const ReplyPanel::Prompt prompt{
        .title = displayableText(hasSender ? *content.subtitle : content.title, titleLimit),
        .text = displayableText(content.body, bodyLimit),
        .field = replyFieldOf(reply)};
    panels_.openReply(identifier, prompt, [this, identifier, action = reply.identifier](const QString& text) {
        events_.replied(identifier, action, text);
    });
}

} // namespace velloway
