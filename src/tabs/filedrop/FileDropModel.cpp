#include "tabs/filedrop/FileDropModel.h"

#include "tabs/FindRow.h"
#include "text/ByteCount.h"
#include "text/DateText.h"

#include <cmath>
#include <cstdint>
#include <filesystem>

namespace velloway {

namespace {

std::string percentageText(double progress) {
    constexpr double widest = 1e15;
    const double percent = progress * 100;
    const bool isSensible = std::abs(percent) < widest;
    return std::to_string(isSensible ? static_cast<std::int64_t>(percent) : 0) + "%";
}

std::string detailText(const FileTransferRecord& record, const Host& host) {
    const DateContext context{.locale = host.locale(), .timeZone = host.timeZone()};
    return std::string(record.isOutgoing ? "Sent" : "Received") + " • " +
           byteCountText(record.fileSize, context.locale) + " • " +
           shortTime(secondsSince1970(record.date), context);
}

} // namespace

FileTransferRow fileTransferRow(const FileTransferRecord& record, const Host& host) {
    return {.id = record.id,
            .symbol = record.isOutgoing ? "paperplane.fill" : "arrow.down.circle.fill",
            .color = record.isOutgoing ? ColorRole::blue : ColorRole::green,
            .fileName = record.fileName,
            .isCompleted = record.isCompleted,
            .progress = record.progress,
            .percentage = percentageText(record.progress),
            .detail = detailText(record, host),
            .showsRevealButton = record.url.has_value()};
}

FileDropModel::FileDropModel(const TabDependencies& dependencies)
    : transfers(
          [this] {
              std::vector<FileTransferRow> rows;
              for (const FileTransferRecord& record : with_.history->fileTransfers.get()) {
                  rows.push_back(fileTransferRow(record, with_.host));
              }
              return rows;
          },
          dependencies.history->fileTransfers),
      with_(dependencies) {}

void FileDropModel::selectFileAndSend() {
    with_.windows.beginOpenPanel({.allowsMultipleSelection = true, .canChooseDirectories = false},
                                 [weak = std::weak_ptr(self_)](const auto& urls) {
                                     const auto self = weak.lock();
                                     if (!self || !urls) {
                                         return;
                                     }
                                     for (const std::filesystem::path& url : *urls) {
                                         self->with_.server.sendFile(url);
                                     }
                                 });
}

void FileDropModel::revealFile(const Uuid& transfer) {
    const FileTransferRecord* record = findRow(with_.history->fileTransfers.get(), transfer);
    if (record && record->url) {
        with_.workspace.activateFileViewerSelecting(*record->url);
    }
}

} // namespace velloway
