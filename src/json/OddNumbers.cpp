#include "json/OddNumbers.h"

#include <simdjson.h>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace velloway {

namespace {

constexpr std::uint64_t firstStandIn = std::uint64_t{1} << 63;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool startsNumber(char c) {
    return isDigit(c) || c == '-';
}

bool isInNumber(char c) {
    return startsNumber(c) || c == '+' || c == '.' || c == 'e' || c == 'E';
}

/// Returns how many there were.
std::size_t takeDigits(std::string_view& text) {
    const auto count =
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
    text.remove_prefix(count);
    return count;
}

bool takeOneOf(std::string_view& text, std::string_view characters) {
    const bool isThere = !text.empty() && characters.find(text.front()) != std::string_view::npos;
    text.remove_prefix(isThere ? 1 : 0);
    return isThere;
}

bool isNumber(std::string_view text) {
    takeOneOf(text, "-");
    const bool hasLeadingZero = text.starts_with('0');
    const std::size_t whole = takeDigits(text);
    bool isGood = whole == 1 || (whole > 1 && !hasLeadingZero);
    if (takeOneOf(text, ".")) {
        isGood = isGood && takeDigits(text) > 0;
    }
    if (takeOneOf(text, "eE")) {
        takeOneOf(text, "+-");
        isGood = isGood && takeDigits(text) > 0;
    }
    return isGood && text.empty();
}

/// The end of the JSON text that opens at `at`.
std::size_t endOfText(std::string_view json, std::size_t at) {
    for (++at; at < json.size() && json[at] != '"'; ++at) {
        at += json[at] == '\\' ? 1 : 0;
    }
    return std::min(at + 1, json.size());
}

/// Shorter integers fit, and so does every other number without an exponent.
bool mayBeOdd(std::string_view token) {
    constexpr std::size_t shortestOdd = 19;
    return token.size() >= shortestOdd || token.find_first_of("eE") != std::string_view::npos;
}

/// Absent when the number fits a signed integer or a double, and when the token is not a number.
std::optional<double> oddValue(simdjson::dom::parser& parser, std::string_view token) {
    if (!mayBeOdd(token) || !isNumber(token)) {
        return std::nullopt;
    }
    std::string array = "[";
    array.append(token).append("]");
    simdjson::dom::element number;
    const bool isReadable = parser.parse(array).at(0).get(number) == simdjson::SUCCESS;
    if (isReadable && number.type() != simdjson::dom::element_type::UINT64) {
        return std::nullopt;
    }
    if (token.find_first_of(".eE") == std::string_view::npos) {
        array.insert(array.size() - 1, ".0");
    }
    double value = 0;
    if (parser.parse(array).at(0).get(value) == simdjson::SUCCESS) {
        return value;
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return token.starts_with('-') ? -infinity : infinity;
}

} // namespace

std::optional<std::string> OddNumbers::replaceIn(std::string_view text) {
    values_.clear();
    std::string replaced;
    std::size_t copied = 0;
    simdjson::dom::parser parser;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '"') {
            at = endOfText(text, at);
            continue;
        }
        if (!startsNumber(text[at])) {
            ++at;
            continue;
        }
        const std::size_t start = at;
        while (at < text.size() && isInNumber(text[at])) {
            ++at;
        }
        if (const auto value = oddValue(parser, text.substr(start, at - start))) {
            replaced.append(text, copied, start - copied).append(std::to_string(firstStandIn + values_.size()));
            copied = at;
            values_.push_back(*value);
        }
    }
    if (values_.empty()) {
        return std::nullopt;
    }
    return std::move(replaced.append(text, copied));
}

double OddNumbers::valueOf(std::uint64_t standIn) const {
    return values_[static_cast<std::size_t>(standIn - firstStandIn)];
}

} // namespace velloway
