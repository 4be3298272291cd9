#pragma once

#include "bridge/RowModel.h"
#include "bridge/TabBridge.h"
#include "tabs/filedrop/FileDropModel.h"

#include <string>

namespace velloway {

class FileDropBridge : public TabBridge {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")
    Q_PROPERTY(QAbstractItemModel* transfers READ transfers CONSTANT)
    Q_PROPERTY(bool showsClear READ showsClear NOTIFY showsClearChanged)

public:
    explicit FileDropBridge(FileDropModel& model);

    QAbstractItemModel* transfers() { return &transfers_; }
    bool showsClear() const { return showsClear_; }

    Q_INVOKABLE void selectFileAndSend() { model_.selectFileAndSend(); }
    Q_INVOKABLE void revealFile(const QString& id);
    Q_INVOKABLE void clearFileTransfers() { model_.clearFileTransfers(); }

signals:
    void showsClearChanged();

private:
    FileDropModel& model_;
    bool showsClear_ = false;
    RowModel<FileTransferRow, std::string> transfers_;
};

} // namespace velloway
