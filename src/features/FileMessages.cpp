#include "features/FileMessages.h"

#include "base64/Base64.h"
#include "json/JsonWriter.h"

#include <utility>

namespace velloway {

std::string fileTransferStartMessage(std::string_view fileName, std::int64_t fileSize) {
    std::string text = R"({"action":"file_transfer_start","fileName":")";
    text.append(fileName).append(R"(","fileSize":)").append(std::to_string(fileSize)).append("}");
    return text;
}

std::optional<std::string> fileChunkMessage(std::string_view fileName, std::string_view bytes, bool isLast,
                                            std::string room) {
    // Memory that has held such a message is large enough, or nearly so; otherwise just what is needed. A
    // character of the name takes six bytes at most.
    constexpr std::size_t roomForTheRest = 80;
    if (room.capacity() < bytes.size() / 3 * 4) {
        room.reserve(base64::encodedEscapedSize(bytes) + fileName.size() * 6 + roomForTheRest);
    }
    JsonWriter writer(std::move(room));
    writer.add("action", "file_chunk");
    writer.add("fileName", fileName);
    writer.addBase64("fileData", bytes);
    writer.addBoolean("isLast", isLast);
    if (!writer.isValid()) {
        return std::nullopt;
    }
    return std::move(writer).finish();
}

} // namespace velloway
