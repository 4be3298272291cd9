#include "text/Case.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/stringpiece.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace velloway {

namespace {

using Mapping = void (*)(const char* locale, std::uint32_t options, icu::StringPiece source,
                         icu::ByteSink& sink, icu::Edits* edits, UErrorCode& error);

std::string mapped(std::string_view text, char (*ascii)(char), Mapping map) {
    constexpr auto longest = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    std::string out;
    if (isAscii(text) || text.size() > longest) {
        out.resize(text.size());
        std::transform(text.begin(), text.end(), out.begin(), ascii);
        return out;
    }
    out.reserve(text.size());
    icu::StringByteSink<std::string> sink(&out);
    UErrorCode error = U_ZERO_ERROR;
    map("", 0, icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())), sink, nullptr, error);
    return U_SUCCESS(error) ? out : std::string(text);
}

} // namespace

bool isAscii(std::string_view text) {
    unsigned char seen = 0;
    for (const char c : text) {
        seen = static_cast<unsigned char>(seen | static_cast<unsigned char>(c));
    }
    return seen < 0x80;
}

std::string upperCased(std::string_view text) {
    return mapped(text, upperAscii, &icu::CaseMap::utf8ToUpper);
}

std::string lowerCased(std::string_view text) {
    return mapped(text, lowerAscii, &icu::CaseMap::utf8ToLower);
}

} // namespace velloway
