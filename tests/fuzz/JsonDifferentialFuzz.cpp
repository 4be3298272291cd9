// Our reader and Boost.JSON must agree on what is JSON and on what it says.

#include "json/JsonReader.h"

#include <boost/json/src.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using velloway::JsonReader;
using velloway::JsonValue;

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "The readers differ: %s\n", what);
        std::abort();
    }
}

/// Boost's doubles may be off in their last digits.
bool isClose(double one, double other) {
    if (one == other) {
        return true;
    }
    const double scale = std::max(std::abs(one), std::abs(other));
    return std::abs(one - other) <= scale * 1e-12 || scale < 1e-300;
}

void compareNumbers(const JsonValue& ours, const boost::json::value& theirs) {
    const auto real = ours.real();
    require(real.has_value(), "a number");
    if (const auto* whole = theirs.if_int64()) {
        require(ours.integer() == *whole, "a whole number");
        return;
    }
    if (const auto* whole = theirs.if_uint64()) {
        require(!ours.integer(), "a whole number beyond 64 bits");
        require(*real == static_cast<double>(*whole), "a large number");
        return;
    }
    const double number = theirs.get_double();
    // Boost loses a zero, or what is nearly one, with an exponent of several hundred.
    require(!std::isfinite(number) || isClose(*real, number) || *real == 0.0, "a real number");
}

void compare(const JsonValue& ours, const boost::json::value& theirs) {
    switch (theirs.kind()) {
    case boost::json::kind::null:
        require(ours.isNull(), "null");
        break;
    case boost::json::kind::bool_:
        require(ours.boolean() == theirs.get_bool(), "a boolean");
        break;
    case boost::json::kind::int64:
    case boost::json::kind::uint64:
    case boost::json::kind::double_:
        compareNumbers(ours, theirs);
        break;
    case boost::json::kind::string: {
        const auto& text = theirs.get_string();
        require(ours.text() == std::string_view(text.data(), text.size()), "a text");
        break;
    }
    case boost::json::kind::array: {
        const auto& array = theirs.get_array();
        std::size_t index = 0;
        require(ours.forEachElement([&](const JsonValue& element) {
            require(index < array.size(), "the length of an array");
            compare(element, array[index++]);
            return true;
        }),
                "an array");
        require(index == array.size(), "the length of an array");
        break;
    }
    case boost::json::kind::object:
        require(ours.isObject(), "an object");
        for (const auto& member : theirs.get_object()) {
            const auto value = ours.member({member.key().data(), member.key().size()});
            require(value.has_value(), "a member");
            compare(*value, member.value());
        }
        break;
    }
}

std::string_view withoutByteOrderMark(std::string_view text) {
    return text.substr(text.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Short enough for what the fuzzer thinks of.
    constexpr std::size_t longText = 6;
    static JsonReader inPlaceReader(longText);
    static JsonReader copyingReader;
    const std::string_view text(reinterpret_cast<const char*>(data), size);

    std::vector<char> padded(text.begin(), text.end());
    padded.resize(size + 64, '"');
    std::string error;
    const auto inPlace = inPlaceReader.parse({padded.data(), size}, 64, error);
    const auto copied = copyingReader.parse(text, 0, error);
    require(inPlace.has_value() == copied.has_value(), "reading in place and in a copy");

    const std::string_view body = withoutByteOrderMark(text);
    boost::json::parse_options options;
    options.max_depth = JsonReader::maxDepth;
    boost::system::error_code failure;
    const auto theirs = boost::json::parse({body.data(), body.size()}, failure, {}, options);
    if (failure == boost::json::error::exponent_overflow) {
        return 0;
    }
    const bool isGood = !failure && (theirs.is_object() || theirs.is_array());
    require(copied.has_value() == isGood, "what is JSON");
    if (isGood) {
        compare(*copied, theirs);
        compare(*inPlace, theirs);
    }
    return 0;
}
