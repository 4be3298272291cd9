#include "text/WholeNumber.h"

#include "text/Trim.h"

#include <unicode/decimfmt.h>
#include <unicode/numfmt.h>
#include <unicode/parsepos.h>
#include <unicode/unistr.h>

#include <memory>

namespace velloway {

namespace {

std::unique_ptr<icu::NumberFormat> makeFormat(const std::string& locale) {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> format(
        icu::NumberFormat::createInstance(icu::Locale::createCanonical(locale.c_str()), UNUM_DECIMAL, error));
    if (U_FAILURE(error) || !format) {
        return nullptr;
    }
    format->setGroupingUsed(false);
    format->setParseIntegerOnly(true);
    if (auto* decimal = dynamic_cast<icu::DecimalFormat*>(format.get())) {
        decimal->setParseNoExponent(true);
    }
    return format;
}

icu::UnicodeString toUnicode(std::string_view text) {
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

} // namespace

std::string wholeNumberText(std::int64_t number, const std::string& locale) {
    const auto format = makeFormat(locale);
    if (!format) {
        return std::to_string(number);
    }
    icu::UnicodeString text;
    format->format(number, text);
    std::string out;
    text.toUTF8String(out);
    return out;
}

std::optional<std::int64_t> parseWholeNumber(std::string_view text, const std::string& locale) {
    constexpr std::size_t longestSensible = 100;
    const std::string_view trimmed = trimBlanksAndLineEnds(text);
    const auto format = makeFormat(locale);
    if (!format || trimmed.empty() || trimmed.size() > longestSensible) {
        return std::nullopt;
    }
    const icu::UnicodeString units = toUnicode(trimmed);
    icu::Formattable parsed;
    icu::ParsePosition position(0);
    format->parse(units, parsed, position);
    if (position.getIndex() != units.length()) {
        return std::nullopt;
    }
    UErrorCode error = U_ZERO_ERROR;
    const std::int64_t number = parsed.getInt64(error);
    return U_SUCCESS(error) ? std::optional(number) : std::nullopt;
}

} // namespace velloway
