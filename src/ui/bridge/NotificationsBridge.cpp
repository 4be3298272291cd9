#include "bridge/NotificationsBridge.h"

namespace velloway {

NotificationsBridge::NotificationsBridge(NotificationsModel& model)
    : TabBridge(QStringLiteral("NotificationsTab.qml")),
      model_(model),
      replyText_(model.replyText, model.pasteboard()),
      rows_(this, [](const NotificationRow& row) { return row.id.text(); },
            {{"rowId", [](const NotificationRow& row) { return row.id.text(); }},
             {"letter", cutTo(64, &NotificationRow::letter)},
             {"app", cutTo(lineBytes, &NotificationRow::app)},
             {"time", &NotificationRow::time},
             {"title", cutTo(lineBytes, &NotificationRow::title)},
             {"body", cutTo(paragraphBytes, &NotificationRow::body)},
             {"isReplying", &NotificationRow::isReplying}}) {
    follow(model.rows, [this] {
        rows_.assign(model_.rows.get());
        show(footer_, model_.footer(), &NotificationsBridge::footerChanged);
    });
}

void NotificationsBridge::openReply(const QString& id) {
    if (const NotificationRow* row = rows_.find(fromQt(id))) {
        model_.openReply(row->id);
    }
}

void NotificationsBridge::sendReply(const QString& id) {
    if (const NotificationRow* row = rows_.find(fromQt(id))) {
        model_.sendReply(row->id);
    }
}

} // namespace velloway
