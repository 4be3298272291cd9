#include "json/JsonReader.h"

#include "json/LongTexts.h"
#include "json/OddNumbers.h"

#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <type_traits>

namespace velloway {

namespace dom = simdjson::dom;

/// What the values of a parsed text point into.
struct JsonValue::Text {
    explicit Text(std::size_t longText) : longTexts(longText) {}

    static Element wrapped(const dom::element& element) { return std::bit_cast<Element>(element); }
    static dom::element unwrapped(const Element& element) { return std::bit_cast<dom::element>(element); }

    double realOf(const dom::element& number) const {
        if (number.type() == dom::element_type::UINT64 && !oddNumbers.isEmpty()) {
            return oddNumbers.valueOf(number.get_uint64().value_unsafe());
        }
        return number.get_double().value_unsafe();
    }

    dom::parser parser;
    /// In the place of each the parser has seen an empty text.
    LongTexts longTexts;
    OddNumbers oddNumbers;
};

namespace {

std::optional<std::int64_t> wholeNumber(double number) {
    constexpr double limit = 9223372036854775808.0;
    if (number >= -limit && number < limit && std::trunc(number) == number) {
        return static_cast<std::int64_t>(number);
    }
    return std::nullopt;
}

/// How many containers lie inside one another, this one included.
std::size_t depthOf(const dom::element& element) {
    std::size_t depth = 0;
    dom::array array;
    dom::object object;
    if (element.get(array) == simdjson::SUCCESS) {
        for (const dom::element inner : array) {
            depth = std::max(depth, depthOf(inner));
        }
        return depth + 1;
    }
    if (element.get(object) == simdjson::SUCCESS) {
        for (const auto field : object) {
            depth = std::max(depth, depthOf(field.value));
        }
        return depth + 1;
    }
    return depth;
}

/// Passes every text and key to `texts`, in their order; returns false once it needs no more.
bool passTexts(const dom::element& element, LongTexts& texts) {
    std::string_view text;
    dom::array array;
    dom::object object;
    if (element.get(text) == simdjson::SUCCESS) {
        return texts.passText(text.data());
    }
    if (element.get(array) == simdjson::SUCCESS) {
        return std::all_of(array.begin(), array.end(),
                           [&](const dom::element& inner) { return passTexts(inner, texts); });
    }
    if (element.get(object) == simdjson::SUCCESS) {
        return std::all_of(object.begin(), object.end(), [&](const dom::key_value_pair& field) {
            return texts.passText(field.key.data()) && passTexts(field.value, texts);
        });
    }
    return true;
}

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The library's own words, without their final stop.
std::string reason(simdjson::error_code failure) {
    std::string_view text = simdjson::error_message(failure);
    text = text.substr(0, text.find_last_not_of('.') + 1);
    return std::string(text);
}

constexpr std::string_view neitherObjectNorArray = "The text holds no object or array at top level";

} // namespace

struct JsonReader::State {
    explicit State(std::size_t longText) : text(longText) {}

    JsonValue::Text text;
    dom::parser& parser = text.parser;
    dom::element root;
    /// Texts that may not be read beyond their end are copied here.
    std::unique_ptr<char[]> padded;
    std::size_t paddedCapacity = 0;

    simdjson::error_code makeRoom(std::size_t size);
    const char* copyPadded(std::string_view json);
    simdjson::error_code parse(std::string_view json, std::size_t readableAfter);
    simdjson::error_code parseWhole(std::string_view json, std::size_t readableAfter);
    simdjson::error_code parsePadded(std::string_view json);
    simdjson::error_code parseDeep(std::string_view json);
};

simdjson::error_code JsonReader::State::makeRoom(std::size_t size) {
    if (size <= parser.capacity()) {
        return simdjson::SUCCESS;
    }
    // The parser alone would make exactly the room for this text, and again for each that is a little longer.
    constexpr std::size_t least = 4096;
    return parser.allocate(std::max(least, size + size / 4), maxDepth);
}

const char* JsonReader::State::copyPadded(std::string_view json) {
    const std::size_t needed = json.size() + simdjson::SIMDJSON_PADDING;
    if (needed > paddedCapacity) {
        paddedCapacity = std::max(needed, parser.capacity() + simdjson::SIMDJSON_PADDING);
        padded = std::make_unique<char[]>(paddedCapacity);
    }
    json.copy(padded.get(), json.size());
    return padded.get();
}

simdjson::error_code JsonReader::State::parse(std::string_view json, std::size_t readableAfter) {
    text.oddNumbers.clear();
    text.longTexts.clear();
    const bool isInPlace = readableAfter >= simdjson::SIMDJSON_PADDING;
    const auto rest = isInPlace ? text.longTexts.cut(json, simdjson::SIMDJSON_PADDING) : std::nullopt;
    if (rest && makeRoom(rest->size()) == simdjson::SUCCESS && parsePadded(*rest) == simdjson::SUCCESS) {
        passTexts(root, text.longTexts);
        return simdjson::SUCCESS;
    }
    // The whole text decides about the error. No text that was cut out has a place by now.
    const auto failure = parseWhole(json, readableAfter);
    if (failure == simdjson::SUCCESS) {
        return failure;
    }
    // Which code a number out of range has depends on the version of the parser.
    const auto replaced = text.oddNumbers.replaceIn(json);
    return replaced ? parseWhole(*replaced, 0) : failure;
}

simdjson::error_code JsonReader::State::parseWhole(std::string_view json, std::size_t readableAfter) {
    if (const auto failure = makeRoom(json.size())) {
        return failure;
    }
    const bool isInPlace = readableAfter >= simdjson::SIMDJSON_PADDING;
    return parsePadded({isInPlace ? json.data() : copyPadded(json), json.size()});
}

simdjson::error_code JsonReader::State::parsePadded(std::string_view json) {
    const auto failure = parser.parse(json.data(), json.size(), false).get(root);
    return failure == simdjson::DEPTH_ERROR ? parseDeep(json) : failure;
}

/// The parser does not count an empty container, and so its limit leaves room for one inside the innermost of
/// the others. Here the text is at that limit or beyond.
simdjson::error_code JsonReader::State::parseDeep(std::string_view json) {
    const std::size_t capacity = parser.capacity();
    if (const auto failure = parser.allocate(capacity, maxDepth + 1)) {
        return failure;
    }
    auto failure = parser.parse(json.data(), json.size(), false).get(root);
    if (failure == simdjson::SUCCESS && depthOf(root) > maxDepth) {
        failure = simdjson::DEPTH_ERROR;
    }
    const auto restored = parser.allocate(capacity, maxDepth);
    return failure ? failure : restored;
}

JsonReader::JsonReader(std::size_t longText) : state_(std::make_unique<State>(longText)) {}
JsonReader::~JsonReader() = default;

void JsonReader::release() {
    state_->text.longTexts.clear();
    if (state_->parser.capacity() > alwaysKept) {
        state_->parser = dom::parser();
        state_->padded.reset();
        state_->paddedCapacity = 0;
    }
}

std::size_t JsonReader::capacity() const {
    return state_->parser.capacity();
}

std::optional<JsonValue> JsonReader::parse(std::string_view text, std::size_t readableAfter,
                                           std::string& error) {
    if (text.starts_with(byteOrderMark)) {
        text.remove_prefix(byteOrderMark.size());
    }
    // Some versions of the parser skip a mark themselves, which would make two.
    const auto failure =
        text.starts_with(byteOrderMark) ? simdjson::TAPE_ERROR : state_->parse(text, readableAfter);
    if (failure) {
        error = reason(failure);
        return std::nullopt;
    }
    const JsonValue root(state_->text, JsonValue::Text::wrapped(state_->root));
    if (!root.isObject() && !root.isArray()) {
        error = neitherObjectNorArray;
        return std::nullopt;
    }
    return root;
}

bool JsonValue::isNull() const {
    return Text::unwrapped(element_).is_null();
}

bool JsonValue::isObject() const {
    return Text::unwrapped(element_).is_object();
}

bool JsonValue::isArray() const {
    return Text::unwrapped(element_).is_array();
}

std::optional<std::string_view> JsonValue::text() const {
    std::string_view text;
    if (Text::unwrapped(element_).get(text)) {
        return std::nullopt;
    }
    return text_->longTexts.escaped(text.data()) ? text_->longTexts.plain(text.data()) : text;
}

std::optional<std::string_view> JsonValue::slashEscapedText() const {
    std::string_view text;
    if (Text::unwrapped(element_).get(text)) {
        return std::nullopt;
    }
    const auto* escaped = text_->longTexts.escaped(text.data());
    return escaped ? *escaped : text;
}

std::optional<std::int64_t> JsonValue::integer() const {
    const dom::element element = Text::unwrapped(element_);
    switch (element.type()) {
    case dom::element_type::INT64:
        return element.get_int64().value_unsafe();
    case dom::element_type::DOUBLE:
        return wholeNumber(element.get_double().value_unsafe());
    default:
        // An integer that the parser keeps as unsigned is beyond the signed range.
        return std::nullopt;
    }
}

std::optional<double> JsonValue::real() const {
    const dom::element element = Text::unwrapped(element_);
    return element.is_number() ? std::optional(text_->realOf(element)) : std::nullopt;
}

std::optional<bool> JsonValue::boolean() const {
    bool value = false;
    return Text::unwrapped(element_).get(value) ? std::nullopt : std::optional(value);
}

std::optional<JsonValue> JsonValue::member(std::string_view key) const {
    std::optional<JsonValue> found;
    dom::object object;
    if (Text::unwrapped(element_).get(object)) {
        return found;
    }
    for (const auto field : object) {
        if (field.key == key) {
            found = JsonValue(*text_, Text::wrapped(field.value));
        }
    }
    return found;
}

bool JsonValue::forEachElement(const std::function<bool(const JsonValue&)>& visit) const {
    dom::array array;
    if (Text::unwrapped(element_).get(array)) {
        return false;
    }
    return std::all_of(array.begin(), array.end(), [&](const dom::element& element) {
        return visit(JsonValue(*text_, Text::wrapped(element)));
    });
}

} // namespace velloway
