#pragma once

#include "bridge/RowModel.h"
#include "bridge/TabBridge.h"
#include "tabs/clipboard/ClipboardModel.h"

#include <string>

namespace velloway {

class ClipboardBridge : public TabBridge {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")
    Q_PROPERTY(QAbstractItemModel* rows READ rows CONSTANT)
    Q_PROPERTY(bool showsClear READ showsClear NOTIFY showsClearChanged)

public:
    explicit ClipboardBridge(ClipboardModel& model);

    QAbstractItemModel* rows() { return &rows_; }
    bool showsClear() const { return showsClear_; }

    Q_INVOKABLE void sendCurrentClipboard() { model_.sendCurrentClipboard(); }
    Q_INVOKABLE void copyToClipboard(const QString& id);
    /// Copies the end of a row's text, of which only the head is shown, from a position in it on.
    Q_INVOKABLE void copyFrom(const QString& id, int start);
    Q_INVOKABLE void clearClipboard() { model_.clearClipboard(); }

signals:
    void showsClearChanged();

private:
    ClipboardModel& model_;
    bool showsClear_ = false;
    RowModel<ClipboardRow, std::string> rows_;
};

} // namespace velloway
