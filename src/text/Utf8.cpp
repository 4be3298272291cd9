#include "text/Utf8.h"

#include <simdjson.h>
#include <unicode/unistr.h>

namespace velloway {

bool isUtf8(std::string_view bytes) {
    return simdjson::validate_utf8(bytes);
}

std::string_view head(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    const auto continuesCharacter = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
    };
    while (bytes > 0 && continuesCharacter(text[bytes])) {
        --bytes;
    }
    return text.substr(0, bytes);
}

std::string repairedUtf8(std::string_view bytes) {
    if (isUtf8(bytes)) {
        return std::string(bytes);
    }
    std::string repaired;
    icu::UnicodeString::fromUTF8({bytes.data(), static_cast<std::int32_t>(bytes.size())})
        .toUTF8String(repaired);
    return repaired;
}

} // namespace velloway
