#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velloway {

/// The message that announces a file. The name is put in as it stands, not escaped.
std::string fileTransferStartMessage(std::string_view fileName, std::int64_t fileSize);

/// The message with one piece of a file. Absent when the name is not UTF-8. The message takes the memory of
/// `room`.
std::optional<std::string> fileChunkMessage(std::string_view fileName, std::string_view bytes, bool isLast,
                                            std::string room = {});

} // namespace velloway
