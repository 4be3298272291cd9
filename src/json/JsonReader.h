#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velloway {

/// One value of a parsed message. Valid until the reader that made it parses again or goes.
class JsonValue {
public:
    bool isNull() const;
    bool isObject() const;
    bool isArray() const;

    // Absent when the value is of another type; there are no conversions.
    /// May hold NUL characters. UTF-8.
    std::optional<std::string_view> text() const;
    /// As `text`, but slashes may have a backslash before them, as in the message. Far cheaper for a long text
    /// whose reader takes no notice of backslashes.
    std::optional<std::string_view> slashEscapedText() const;
    /// A number without a fractional part within signed 64 bits, however it is written (12, 12.0, 1e3).
    std::optional<std::int64_t> integer() const;
    /// Any number; one beyond the range of a double reads as infinite.
    std::optional<double> real() const;
    std::optional<bool> boolean() const;

    /// The member under `key`; of several equal keys the last one. Absent when there is none or this is not an
    /// object.
    std::optional<JsonValue> member(std::string_view key) const;

    /// Walks the elements of an array in order until `visit` returns false. Returns false if this is not an
    /// array or the walk was cut short.
    bool forEachElement(const std::function<bool(const JsonValue&)>& visit) const;

private:
    friend class JsonReader;
    struct Text;
    /// The parser's own handle on the value.
    struct Element {
        alignas(void*) std::byte bytes[2 * sizeof(void*)];
    };
    JsonValue(const Text& text, const Element& element) : text_(&text), element_(element) {}

    const Text* text_;
    Element element_;
};

/// Parses JSON texts; keeps its memory from one text to the next. One thread at a time.
///
/// A text is one object or array with nothing but white space around it; one UTF-8 byte order mark before it is
/// skipped. Refused: anything else at top level, invalid UTF-8, lone surrogates, raw control characters, bytes
/// after the value, and nesting deeper than 512. Numbers may have any size.
///
/// A large text needs some 15 bytes of address space for each of its bytes, until `release` is called.
class JsonReader {
public:
    /// Texts within a message that have at least `longText` bytes may be left where they are.
    explicit JsonReader(std::size_t longText = 4096);
    ~JsonReader();

    /// Absent on failure, with the reason in `error`, which has no final stop. Works in place if at least 64
    /// bytes after `text` may be read, whose content does not matter; `text` must then live as long as the
    /// values do.
    std::optional<JsonValue> parse(std::string_view text, std::size_t readableAfter, std::string& error);

    static constexpr std::size_t maxDepth = 512;

    /// Ends the life of the values and gives back the memory that a text beyond `alwaysKept` bytes needed.
    void release();
    static constexpr std::size_t alwaysKept = std::size_t{4} << 20;

    /// The longest text for which there is memory at present.
    std::size_t capacity() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace velloway
