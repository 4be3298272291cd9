#include "tabs/FileDropTab.h"

#include "text/ByteCount.h"
#include "text/DateText.h"

#include <cmath>
#include <cstdint>

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

std::vector<FileTransferRow> fileTransferRows(const std::vector<FileTransferRecord>& records,
                                              const Host& host) {
    std::vector<FileTransferRow> rows;
    rows.reserve(records.size());
    for (const FileTransferRecord& record : records) {
        rows.push_back(fileTransferRow(record, host));
    }
    return rows;
}

} // namespace velloway
