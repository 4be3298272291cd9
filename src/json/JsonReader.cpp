#include "json/JsonReader.h"

#include "json/LongTexts.h"

#include <boost/json/src.hpp>
#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <type_traits>
#include <utility>

namespace velloway {

namespace {

namespace dom = simdjson::dom;

/// How a simdjson element travels inside a `JsonValue`.
struct Handle {
    const void* document;
    std::size_t index;
};
static_assert(sizeof(dom::element) == sizeof(Handle) && std::is_trivially_copyable_v<dom::element>);

/// What a `JsonValue` of simdjson calls its document.
struct Parsed {
    explicit Parsed(std::size_t longText) : longTexts(longText) {}

    dom::parser parser;
    /// Of them, the parser has seen an empty text.
    LongTexts longTexts;
};

const LongTexts& longTextsOf(const void* document) {
    return static_cast<const Parsed*>(document)->longTexts;
}

dom::element elementOf(const void* document, std::size_t index) {
    return std::bit_cast<dom::element>(Handle{&static_cast<const Parsed*>(document)->parser.doc, index});
}

const boost::json::value& valueOf(const void* document) {
    return *static_cast<const boost::json::value*>(document);
}

std::optional<std::int64_t> wholeNumber(double number) {
    constexpr double limit = 9223372036854775808.0;
    if (number >= -limit && number < limit && std::trunc(number) == number) {
        return static_cast<std::int64_t>(number);
    }
    return std::nullopt;
}

/// The words that simdjson leaves of a document, one for each bracket and value, with its kind in the top byte.
class Tape {
public:
    explicit Tape(const dom::document& document)
        : words_(document.tape.get()), end_(words_[0] & ((std::uint64_t{1} << kindShift) - 1)) {}

    bool atEnd() const { return at_ >= end_; }
    std::size_t index() const { return at_; }
    char kind() const { return static_cast<char>(words_[at_] >> kindShift); }
    void advance() {
        // A number itself takes the next word.
        const bool isNumber = kind() == 'l' || kind() == 'u' || kind() == 'd';
        at_ += isNumber ? 2 : 1;
    }

private:
    static constexpr int kindShift = 56;
    const std::uint64_t* words_;
    std::size_t end_;
    std::size_t at_ = 1;
};

/// Whether containers are nested at most `maxDepth` deep; simdjson does not count an empty innermost one.
bool isWithinDepth(const dom::document& document) {
    std::size_t depth = 0;
    for (Tape tape(document); !tape.atEnd(); tape.advance()) {
        const char kind = tape.kind();
        if (kind == '{' || kind == '[') {
            if (++depth > JsonReader::maxDepth) {
                return false;
            }
        } else if (kind == '}' || kind == ']') {
            --depth;
        }
    }
    return true;
}

void findPlaces(LongTexts& texts, const dom::document& document) {
    Tape tape(document);
    std::size_t passed = 0;
    texts.setPlaces([&](std::size_t ordinal) {
        while (tape.kind() != '"' || passed < ordinal) {
            passed += tape.kind() == '"';
            tape.advance();
        }
        return tape.index();
    });
}

std::string_view withoutByteOrderMark(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return text.substr(0, mark.size()) == mark ? text.substr(mark.size()) : text;
}

/// The library's own words, without their final stop.
std::string reason(simdjson::error_code failure) {
    std::string_view text = simdjson::error_message(failure);
    text = text.substr(0, text.find_last_not_of('.') + 1);
    return std::string(text);
}

constexpr std::string_view neitherObjectNorArray = "The text holds no object or array at top level";

} // namespace

struct JsonReader::State {
    explicit State(std::size_t longText) : parsed(longText) {}

    Parsed parsed;
    dom::parser& parser = parsed.parser;
    /// Texts that may not be read beyond their end are copied here.
    std::unique_ptr<char[]> padded;
    std::size_t paddedCapacity = 0;
    /// Texts in a row that left most of the memory unused.
    int smallTexts = 0;
    boost::json::value fallback;

    simdjson::error_code makeRoom(std::size_t size);
    const char* copyPadded(std::string_view text);
    /// The index of the root. With 64 bytes behind the text.
    std::optional<std::size_t> parsePadded(std::string_view text, simdjson::error_code& error);
    std::optional<std::size_t> parseQuickly(std::string_view text, std::size_t readableAfter,
                                            simdjson::error_code& error);
    bool parseAnyNumber(std::string_view text, std::string& error);
};

simdjson::error_code JsonReader::State::makeRoom(std::size_t size) {
    const std::size_t present = parser.capacity();
    const bool isMostlyUnused = present > alwaysKept && size < present / 8;
    smallTexts = isMostlyUnused ? smallTexts + 1 : 0;
    if (smallTexts >= patience) {
        smallTexts = 0;
        parser = dom::parser();
        padded.reset();
        paddedCapacity = 0;
    }
    if (size <= parser.capacity()) {
        return simdjson::SUCCESS;
    }
    // simdjson alone would make exactly the room for this text, and again for each that is a little longer.
    constexpr std::size_t least = 4096;
    const std::size_t capacity = std::max(least, size + size / 4);
    if (const auto error = parser.allocate(capacity, maxDepth + 1)) {
        return error;
    }
    return parser.doc.allocate(capacity);
}

const char* JsonReader::State::copyPadded(std::string_view text) {
    const std::size_t needed = text.size() + simdjson::SIMDJSON_PADDING;
    if (needed > paddedCapacity) {
        paddedCapacity = parser.capacity() + simdjson::SIMDJSON_PADDING;
        padded = std::make_unique<char[]>(paddedCapacity);
    }
    text.copy(padded.get(), text.size());
    return padded.get();
}

std::optional<std::size_t> JsonReader::State::parsePadded(std::string_view text, simdjson::error_code& error) {
    dom::element root;
    error = parser.parse(text.data(), text.size(), false).get(root);
    if (!error && !isWithinDepth(parser.doc)) {
        error = simdjson::DEPTH_ERROR;
    }
    return error ? std::nullopt : std::optional(std::bit_cast<Handle>(root).index);
}

std::optional<std::size_t> JsonReader::State::parseQuickly(std::string_view text, std::size_t readableAfter,
                                                           simdjson::error_code& error) {
    const bool inPlace = readableAfter >= simdjson::SIMDJSON_PADDING;
    parsed.longTexts.clear();
    const auto rest = inPlace ? parsed.longTexts.cut(text, simdjson::SIMDJSON_PADDING) : std::nullopt;
    if (rest && makeRoom(rest->size()) == simdjson::SUCCESS) {
        if (const auto root = parsePadded(*rest, error)) {
            findPlaces(parsed.longTexts, parser.doc);
            return root;
        }
    }
    // What is wrong is told of the whole text.
    parsed.longTexts.clear();
    error = makeRoom(text.size());
    if (error) {
        return std::nullopt;
    }
    return parsePadded({inPlace ? text.data() : copyPadded(text), text.size()}, error);
}

/// Slower, but takes numbers of any size.
bool JsonReader::State::parseAnyNumber(std::string_view text, std::string& error) {
    boost::json::parse_options options;
    options.max_depth = maxDepth;
    boost::system::error_code failure;
    fallback = boost::json::parse({text.data(), text.size()}, failure, {}, options);
    if (failure) {
        error = failure.message();
    }
    return !failure;
}

JsonReader::JsonReader(std::size_t longText) : state_(std::make_unique<State>(longText)) {}
JsonReader::~JsonReader() = default;

std::size_t JsonReader::capacity() const {
    return state_->parser.capacity();
}

std::optional<JsonValue> JsonReader::parse(std::string_view text, std::size_t readableAfter,
                                           std::string& error) {
    state_->fallback = nullptr;
    const std::string_view body = withoutByteOrderMark(text);
    simdjson::error_code failure = simdjson::SUCCESS;
    std::optional<JsonValue> root;
    if (const auto index = state_->parseQuickly(body, readableAfter, failure)) {
        root = JsonValue(JsonValue::Backend::simdjson, &state_->parsed, *index);
    } else if (failure != simdjson::NUMBER_ERROR) {
        error = reason(failure);
        return std::nullopt;
    } else if (state_->parseAnyNumber(body, error)) {
        root = JsonValue(JsonValue::Backend::boost, &state_->fallback, 0);
    } else {
        return std::nullopt;
    }
    if (!root->isObject() && !root->isArray()) {
        error = neitherObjectNorArray;
        return std::nullopt;
    }
    return root;
}

bool JsonValue::isNull() const {
    return backend_ == Backend::simdjson ? elementOf(document_, index_).is_null()
                                         : valueOf(document_).is_null();
}

bool JsonValue::isObject() const {
    return backend_ == Backend::simdjson ? elementOf(document_, index_).is_object()
                                         : valueOf(document_).is_object();
}

bool JsonValue::isArray() const {
    return backend_ == Backend::simdjson ? elementOf(document_, index_).is_array()
                                         : valueOf(document_).is_array();
}

std::optional<std::string_view> JsonValue::text() const {
    if (backend_ == Backend::simdjson) {
        if (longTextsOf(document_).escaped(index_)) {
            return longTextsOf(document_).plain(index_);
        }
        std::string_view text;
        return elementOf(document_, index_).get(text) ? std::nullopt : std::optional(text);
    }
    if (const auto* text = valueOf(document_).if_string()) {
        return std::string_view(text->data(), text->size());
    }
    return std::nullopt;
}

std::optional<std::string_view> JsonValue::slashEscapedText() const {
    const auto* escaped = backend_ == Backend::simdjson ? longTextsOf(document_).escaped(index_) : nullptr;
    return escaped ? *escaped : text();
}

std::optional<std::int64_t> JsonValue::integer() const {
    if (backend_ == Backend::simdjson) {
        const dom::element element = elementOf(document_, index_);
        if (element.type() == dom::element_type::INT64) {
            return element.get_int64().value_unsafe();
        }
    } else if (const auto* number = valueOf(document_).if_int64()) {
        return *number;
    }
    // A number that a backend keeps as unsigned is beyond the signed range, and rounds to no less than that.
    const auto number = real();
    return number ? wholeNumber(*number) : std::nullopt;
}

std::optional<double> JsonValue::real() const {
    if (backend_ == Backend::simdjson) {
        double number = 0;
        return elementOf(document_, index_).get(number) ? std::nullopt : std::optional(number);
    }
    const boost::json::value& value = valueOf(document_);
    if (const auto* number = value.if_double()) {
        // Boost reads a zero with a huge exponent as zero times infinity.
        return std::isnan(*number) ? 0.0 : *number;
    }
    if (const auto* number = value.if_int64()) {
        return static_cast<double>(*number);
    }
    if (const auto* number = value.if_uint64()) {
        return static_cast<double>(*number);
    }
    return std::nullopt;
}

std::optional<bool> JsonValue::boolean() const {
    if (backend_ == Backend::simdjson) {
        bool value = false;
        return elementOf(document_, index_).get(value) ? std::nullopt : std::optional(value);
    }
    const auto* value = valueOf(document_).if_bool();
    return value ? std::optional(*value) : std::nullopt;
}

std::optional<JsonValue> JsonValue::member(std::string_view key) const {
    std::optional<JsonValue> found;
    if (backend_ == Backend::simdjson) {
        dom::object object;
        if (elementOf(document_, index_).get(object)) {
            return std::nullopt;
        }
        for (const auto field : object) {
            if (field.key == key) {
                found = JsonValue(Backend::simdjson, document_, std::bit_cast<Handle>(field.value).index);
            }
        }
        return found;
    }
    if (const auto* object = valueOf(document_).if_object()) {
        if (const auto* value = object->if_contains({key.data(), key.size()})) {
            found = JsonValue(Backend::boost, value, 0);
        }
    }
    return found;
}

bool JsonValue::forEachElement(const std::function<bool(const JsonValue&)>& visit) const {
    if (backend_ == Backend::simdjson) {
        dom::array array;
        if (elementOf(document_, index_).get(array)) {
            return false;
        }
        for (const dom::element element : array) {
            if (!visit(JsonValue(Backend::simdjson, document_, std::bit_cast<Handle>(element).index))) {
                return false;
            }
        }
        return true;
    }
    const auto* array = valueOf(document_).if_array();
    return array != nullptr && std::all_of(array->begin(), array->end(), [&](const boost::json::value& value) {
               return visit(JsonValue(Backend::boost, &value, 0));
           });
}

} // namespace velloway
