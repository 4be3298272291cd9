#include "tabs/notifications/NotificationsModel.h"

#include "tabs/Style.h"
#include "text/Case.h"
#include "text/Graphemes.h"
#include "text/Utf8.h"

#include <cstddef>

namespace velloway {

namespace {

std::string rowLetter(const NotifPayload& payload) {
    if (!payload.app.empty()) {
        return upperCased(firstGrapheme(head(payload.app, rowBytes)));
    }
    return payload.title.empty() ? "?" : upperCased(firstGrapheme(head(payload.title, rowBytes)));
}

} // namespace

NotificationRow notifRow(const NotifPayload& payload, const std::optional<Uuid>& replyingTo,
                         const CallNames& names, const Host& host) {
    NotificationRow row{.id = payload.id,
                        .letter = rowLetter(payload),
                        .app = payload.app.empty() ? "Notification" : std::string(head(payload.app, rowBytes)),
                        .time = payload.formattedTime(host),
                        .isReplying = replyingTo == payload.id};
    if (!payload.title.empty()) {
        row.title = head(names.shownName(payload.title), rowBytes);
    }
    if (!payload.body.empty()) {
        row.body = head(payload.body, rowBytes);
    }
    return row;
}

NotificationsModel::NotificationsModel(const TabDependencies& dependencies, PhoneState& phone)
    : rows(
          [this] {
              std::vector<NotificationRow> made;
              for (const NotifPayload& payload : with_.history->items.get()) {
                  made.push_back(notifRow(payload, replyingTo.get(), phone_.callNames(), with_.host));
              }
              return made;
          },
          dependencies.history->items, replyingTo, phone.phoneCallLog),
      with_(dependencies),
      phone_(phone) {}

NotificationsFooter NotificationsModel::footer() const {
    const std::size_t count = with_.history->items.get().size();
    return {.count = std::to_string(count) + (count == 1 ? " notification" : " notifications"),
            .canClear = count > 0};
}

void NotificationsModel::sendReply(const Uuid& id) {
    with_.server.sendReply(id.text(), replyText.get());
    replyingTo.set(std::nullopt);
    replyText.set("");
}

} // namespace velloway
