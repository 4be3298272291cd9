#include "bridge/FileDropBridge.h"

namespace velloway {

FileDropBridge::FileDropBridge(FileDropModel& model)
    : TabBridge(QStringLiteral("FileDropTab.qml")),
      model_(model),
      transfers_(this, [](const FileTransferRow& row) { return row.id.text(); },
                 {{"rowId", [](const FileTransferRow& row) { return row.id.text(); }},
                  {"symbol", &FileTransferRow::symbol},
                  {"colorRole", &FileTransferRow::color},
                  {"fileName", [](const FileTransferRow& row) { return cutMiddle(row.fileName, lineBytes); }},
                  {"isCompleted", &FileTransferRow::isCompleted},
                  {"progress", &FileTransferRow::progress},
                  {"percentage", &FileTransferRow::percentage},
                  {"detail", &FileTransferRow::detail},
                  {"showsReveal", &FileTransferRow::showsRevealButton}}) {
    follow(model.transfers, [this] {
        transfers_.assign(model_.transfers.get());
        show(showsClear_, model_.showsClear(), &FileDropBridge::showsClearChanged);
    });
}

void FileDropBridge::revealFile(const QString& id) {
    if (const FileTransferRow* row = transfers_.find(fromQt(id))) {
        model_.revealFile(row->id);
    }
}

} // namespace velloway
