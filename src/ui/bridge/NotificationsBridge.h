#pragma once

#include "bridge/FieldText.h"
#include "bridge/RowModel.h"
#include "bridge/TabBridge.h"
#include "tabs/notifications/NotificationsModel.h"

#include <string>

namespace velloway {

class NotificationsBridge : public TabBridge {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")
    Q_PROPERTY(velloway::FieldText* replyText READ replyText CONSTANT)
    Q_PROPERTY(QAbstractItemModel* rows READ rows CONSTANT)
    Q_PROPERTY(QString count READ count NOTIFY footerChanged)
    Q_PROPERTY(bool canClear READ canClear NOTIFY footerChanged)

public:
    explicit NotificationsBridge(NotificationsModel& model);

    FieldText* replyText() { return &replyText_; }
    QAbstractItemModel* rows() { return &rows_; }
    QString count() const { return toQt(footer_.count); }
    bool canClear() const { return footer_.canClear; }

    Q_INVOKABLE void openReply(const QString& id);
    Q_INVOKABLE void sendReply(const QString& id);
    Q_INVOKABLE void cancelReply() { model_.cancelReply(); }
    Q_INVOKABLE void clearNotifications() { model_.clearNotifications(); }

signals:
    void footerChanged();

private:
    NotificationsModel& model_;
    FieldText replyText_;
    NotificationsFooter footer_;
    RowModel<NotificationRow, std::string> rows_;
};

} // namespace velloway
