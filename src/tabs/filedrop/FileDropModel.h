#pragma once

#include "tabs/Computed.h"
#include "tabs/Style.h"
#include "tabs/TabDependencies.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// One transfer, identified by `id`.
struct FileTransferRow {
    Uuid id;
    std::string_view symbol;
    ColorRole color = ColorRole::green;
    std::string fileName;
    /// The progress bar with its percentage shows until the transfer is complete, the detail from then on.
    bool isCompleted = false;
    double progress = 0;
    std::string percentage;
    std::string detail;
    /// Whether the file can be shown in its folder.
    bool showsRevealButton = false;

    bool operator==(const FileTransferRow&) const = default;
};

FileTransferRow fileTransferRow(const FileTransferRecord& record, const Host& host);

/// The transfers in both directions, and the sending of files that the user chooses. Main thread only.
class FileDropModel {
public:
    explicit FileDropModel(const TabDependencies& dependencies);

    /// In the order of the store.
    const Computed<std::vector<FileTransferRow>> transfers;
    bool showsClear() const { return !with_.history->fileTransfers.get().empty(); }

    void selectFileAndSend();
    /// Shows the file of a transfer in its folder, if it has one.
    void revealFile(const Uuid& transfer);
    void clearFileTransfers() { with_.history->clearFileTransfers(); }

private:
    const TabDependencies& with_;
    /// Owns nothing; the open panel can answer after the model has gone.
    const std::shared_ptr<FileDropModel> self_{this, [](FileDropModel*) {}};
};

} // namespace velloway
