#include "json/JsonWriter.h"

#include "base64/Base64.h"
#include "text/Utf8.h"

#include <array>
#include <charconv>
#include <cstring>
#include <utility>

namespace velloway {

namespace {

bool needsEscape(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\' || c == '/';
}

constexpr std::uint64_t everyByte(std::uint8_t byte) {
    return 0x0101010101010101ULL * byte;
}

/// Whether any of eight bytes is zero.
constexpr bool hasZero(std::uint64_t word) {
    return ((word - everyByte(0x01)) & ~word & everyByte(0x80)) != 0;
}

bool anyNeedsEscape(std::uint64_t word) {
    const std::uint64_t belowBlank = (word - everyByte(0x20)) & ~word & everyByte(0x80);
    return belowBlank != 0 || hasZero(word ^ everyByte('"')) || hasZero(word ^ everyByte('\\')) ||
           hasZero(word ^ everyByte('/'));
}

/// The length of the run, from `at` on, that can be copied as it is.
std::size_t plainRun(std::string_view text, std::size_t at) {
    const std::size_t start = at;
    std::uint64_t word = 0;
    for (; at + sizeof word <= text.size(); at += sizeof word) {
        std::memcpy(&word, text.data() + at, sizeof word);
        if (anyNeedsEscape(word)) {
            break;
        }
    }
    while (at < text.size() && !needsEscape(text[at])) {
        ++at;
    }
    return at - start;
}

void appendEscape(std::string& out, char c) {
    switch (c) {
    case '"':
    case '\\':
    case '/':
        out += {'\\', c};
        return;
    case '\b':
        out += "\\b";
        return;
    case '\f':
        out += "\\f";
        return;
    case '\n':
        out += "\\n";
        return;
    case '\r':
        out += "\\r";
        return;
    case '\t':
        out += "\\t";
        return;
    default:
        constexpr char digits[] = "0123456789abcdef";
        out += "\\u00";
        out += {digits[static_cast<unsigned char>(c) >> 4], digits[c & 0x0f]};
    }
}

void appendEscaped(std::string& out, std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t run = plainRun(text, at);
        out.append(text, at, run);
        at += run;
        if (at < text.size()) {
            appendEscape(out, text[at]);
            ++at;
        }
    }
}

} // namespace

JsonWriter::JsonWriter(std::size_t expectedSize) {
    out_.reserve(expectedSize);
}

JsonWriter::JsonWriter(std::string room) : out_(std::move(room)) {
    out_.clear();
}

void JsonWriter::add(std::string_view name, std::string_view text) {
    isValid_ = isValid_ && isUtf8(text);
    key(name);
    out_ += '"';
    appendEscaped(out_, text);
    out_ += '"';
}

void JsonWriter::add(std::string_view name, std::int64_t number) {
    key(name);
    std::array<char, 20> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    out_.append(digits.data(), end);
}

void JsonWriter::addBoolean(std::string_view name, bool value) {
    key(name);
    out_ += value ? "true" : "false";
}

void JsonWriter::addBase64(std::string_view name, std::string_view bytes) {
    key(name);
    out_ += '"';
    base64::appendEncodedEscaped(out_, bytes);
    out_ += '"';
}

std::string JsonWriter::finish() && {
    out_ += out_.empty() ? "{}" : "}";
    return std::move(out_);
}

void JsonWriter::key(std::string_view name) {
    out_ += out_.empty() ? "{\"" : ",\"";
    appendEscaped(out_, name);
    out_ += "\":";
}

} // namespace velloway
