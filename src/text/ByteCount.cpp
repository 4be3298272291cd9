#include "text/ByteCount.h"

#include "text/IcuLocale.h"

#include <unicode/dcfmtsym.h>
#include <unicode/unistr.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace velloway {

namespace {

std::string decimalSeparator(const std::string& locale) {
    UErrorCode error = U_ZERO_ERROR;
    const icu::DecimalFormatSymbols symbols(icuLocale(locale), error);
    std::string separator;
    if (U_SUCCESS(error)) {
        symbols.getConstSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol).toUTF8String(separator);
    }
    return separator.empty() ? "." : separator;
}

struct Unit {
    std::string_view name;
    std::uint64_t bytes;
    /// How many parts of one unit are shown: 1, 10 or 100.
    std::uint64_t parts;
};

constexpr std::array<Unit, 6> units{{{"KB", 1'000, 1},
                                     {"MB", 1'000'000, 10},
                                     {"GB", 1'000'000'000, 100},
                                     {"TB", 1'000'000'000'000, 100},
                                     {"PB", 1'000'000'000'000'000, 100},
                                     {"EB", 1'000'000'000'000'000'000, 100}}};

/// `bytes` in parts of `unit`, rounded half to even.
std::uint64_t inParts(std::uint64_t bytes, const Unit& unit) {
    const std::uint64_t part = unit.bytes / unit.parts;
    const std::uint64_t whole = bytes / part;
    const std::uint64_t rest = bytes % part;
    const bool roundsUp = rest > part - rest || (rest == part - rest && whole % 2 == 1);
    return whole + (roundsUp ? 1 : 0);
}

std::string withFraction(std::uint64_t inParts, std::uint64_t parts, const std::string& locale) {
    std::string text = std::to_string(inParts / parts);
    std::uint64_t fraction = inParts % parts;
    if (fraction == 0) {
        return text;
    }
    std::string digits;
    for (std::uint64_t scale = parts / 10; scale > 0 && fraction > 0; scale /= 10) {
        digits += static_cast<char>('0' + fraction / scale);
        fraction %= scale;
    }
    return text + decimalSeparator(locale) + digits;
}

} // namespace

std::string byteCountText(std::int64_t bytes, const std::string& locale) {
    if (bytes == 0) {
        return "Zero KB";
    }
    const std::string sign = bytes < 0 ? "-" : "";
    const std::uint64_t size =
        bytes < 0 ? 0 - static_cast<std::uint64_t>(bytes) : static_cast<std::uint64_t>(bytes);
    if (size < units.front().bytes) {
        return sign + std::to_string(size) + (size == 1 ? " byte" : " bytes");
    }
    std::size_t chosen = 0;
    while (chosen + 1 < units.size() && inParts(size, units[chosen]) >= 1000 * units[chosen].parts) {
        ++chosen;
    }
    const Unit& unit = units[chosen];
    return sign + withFraction(inParts(size, unit), unit.parts, locale) + " " + std::string(unit.name);
}

} // namespace velloway
