#include "tabs/NotificationsTab.h"

#include "text/Case.h"
#include "text/Graphemes.h"

namespace velloway {

namespace {

std::string rowLetter(const NotifPayload& payload) {
    if (!payload.app.empty()) {
        return upperCased(firstGrapheme(payload.app));
    }
    return payload.title.empty() ? "?" : upperCased(firstGrapheme(payload.title));
}

} // namespace

NotificationRow notifRow(const NotifPayload& payload, const std::optional<Uuid>& replyingTo,
                         const CallNames& names, const Host& host) {
    NotificationRow row{.id = payload.id,
                        .letter = rowLetter(payload),
                        .app = payload.app.empty() ? "Notification" : payload.app,
                        .time = payload.formattedTime(host),
                        .isReplying = replyingTo == payload.id};
    if (!payload.title.empty()) {
        row.title = names.contactName(payload.title);
    }
    if (!payload.body.empty()) {
        row.body = payload.body;
    }
    return row;
}

std::vector<NotificationRow> notificationRows(const std::vector<NotifPayload>& items,
                                              const std::optional<Uuid>& replyingTo, const CallNames& names,
                                              const Host& host) {
    std::vector<NotificationRow> rows;
    rows.reserve(items.size());
    for (const NotifPayload& payload : items) {
        rows.push_back(notifRow(payload, replyingTo, names, host));
    }
    return rows;
}

NotificationsFooter notificationsFooter(std::size_t count) {
    return {.count = std::to_string(count) + (count == 1 ? " notification" : " notifications"),
            .canClear = count > 0};
}

} // namespace velloway
