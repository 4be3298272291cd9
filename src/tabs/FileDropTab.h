#pragma once

#include "state/Records.h"
#include "tabs/Style.h"

#include <optional>
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
std::vector<FileTransferRow> fileTransferRows(const std::vector<FileTransferRecord>& records, const Host& host);

namespace fileDropTexts {
inline constexpr std::string_view title = "File Drop";
inline constexpr std::string_view clearHistory = "Clear History";
inline constexpr std::string_view description =
    "Easily move files between your Mac and Android. Received files "
    "are saved to your Downloads folder.";
inline constexpr std::string_view send = "Send Files...";
inline constexpr std::string_view sendSymbol = "square.and.arrow.up";
inline constexpr std::string_view revealSymbol = "folder";
inline constexpr std::string_view revealTooltip = "Show in Finder";
} // namespace fileDropTexts

} // namespace velloway
