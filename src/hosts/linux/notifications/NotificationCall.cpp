#include "hosts/linux/notifications/NotificationCall.h"

#include "hosts/linux/notifications/NotificationActions.h"

namespace velloway {

namespace {

uchar normalUrgency() {
    return 1;
}

void addActions(NotificationService::Notification& call,
                const std::optional<TextInputNotificationAction>& reply,
                const NotificationCapabilities& capabilities) {
    // Without an action of this name some desktops start the application when the notification is clicked.
    if (capabilities.actions) {
        call.actions << notificationActions::clicked << QString();
    }
    if (reply && capabilities.inlineReply) {
        call.actions << inlineReplyKey << QString::fromStdString(reply->title);
        call.hints["x-kde-reply-placeholder-text"] = QString::fromStdString(reply->textInputPlaceholder);
        call.hints["x-kde-reply-submit-button-text"] = QString::fromStdString(reply->textInputButtonTitle);
    } else if (reply && capabilities.actions) {
        call.actions << QString::fromStdString(reply->identifier) << QString::fromStdString(reply->title);
    }
}

} // namespace

NotificationService::Notification notificationCall(const NotificationContent& content,
                                                   const std::optional<TextInputNotificationAction>& reply,
                                                   unsigned options, uint replacesId,
                                                   const NotificationCapabilities& capabilities) {
    const auto text = notificationText(content, capabilities);
    NotificationService::Notification call{
        .replacesId = replacesId, .summary = text.summary, .body = text.body};
    addActions(call, reply, capabilities);
    call.hints["desktop-entry"] = "org.velloway.Velloway";
    call.hints["urgency"] = QVariant::fromValue(normalUrgency());
    if (reply) {
        call.hints["category"] = "im.received";
    }
    if (capabilities.originName && content.threadIdentifier && !content.threadIdentifier->empty()) {
        call.hints["x-kde-origin-name"] = displayableText(*content.threadIdentifier, titleLimit);
    }
    if (content.hasDefaultSound && (options & presentationOptions::sound)) {
        call.hints["sound-name"] = "message-new-instant";
    } else {
        call.hints["suppress-sound"] = true;
    }
    return call;
}

} // namespace velloway
