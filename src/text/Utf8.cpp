#include "text/Utf8.h"

#include <simdjson.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace velloway {

namespace {

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

bool isUtf8(std::string_view bytes) {
    return simdjson::validate_utf8(bytes);
}

std::string_view head(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    while (bytes > 0 && continuesCharacter(text[bytes])) {
        --bytes;
    }
    return text.substr(0, bytes);
}

std::string_view tail(std::string_view text, std::size_t bytes) {
    std::size_t start = text.size() - std::min(text.size(), bytes);
    while (start > 0 && start < text.size() && continuesCharacter(text[start])) {
        ++start;
    }
    return text.substr(start);
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
