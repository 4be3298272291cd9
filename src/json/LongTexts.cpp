#include "json/LongTexts.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace velloway {

namespace {

/// A message with one long text has few others; one with more is not worth the search.
constexpr std::size_t mostTexts = 64;
constexpr std::size_t keptRest = std::size_t{1} << 20;

/// Sixteen bytes at once: compilers make vector instructions of it on every processor that has them.
using Bytes __attribute__((vector_size(16))) = signed char;
constexpr std::size_t blockSize = 4 * sizeof(Bytes);

Bytes load(const char* from) {
    Bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

/// Reads one byte more. Those beyond ASCII are negative.
bool isPlainBlock(const char* block) {
    Bytes bad{};
    for (std::size_t at = 0; at < blockSize; at += sizeof(Bytes)) {
        const Bytes bytes = load(block + at);
        bad |= (bytes < ' ') | (bytes == '"') | ((bytes == '\\') & (load(block + at + 1) != '/'));
    }
    std::uint64_t halves[2]{};
    std::memcpy(halves, &bad, sizeof halves);
    return (halves[0] | halves[1]) == 0;
}

/// Where the bytes end that a plain text may hold.
std::size_t plainEnd(std::string_view message, std::size_t at) {
    while (message.size() - at > blockSize && isPlainBlock(message.data() + at)) {
        at += blockSize;
    }
    for (; at < message.size(); ++at) {
        const auto byte = static_cast<signed char>(message[at]);
        const bool isLoneBackslash = byte == '\\' && message.substr(at + 1, 1) != "/";
        if (byte < ' ' || byte == '"' || isLoneBackslash) {
            break;
        }
    }
    return at;
}

/// The place of the quotation mark that ends a text of any content, looked for in the next `most` bytes.
std::size_t textEnd(std::string_view message, std::size_t at, std::size_t most) {
    const std::size_t end = at + std::min(most, message.size() - at);
    while (at < end && message[at] != '"') {
        at += message[at] == '\\' ? 2 : 1;
    }
    return at < end ? at : std::string_view::npos;
}

bool isKey(std::string_view message, std::size_t end) {
    const std::size_t next = message.find_first_not_of(" \t\r\n", end + 1);
    return next != std::string_view::npos && message[next] == ':';
}

} // namespace

void LongTexts::findTexts(std::string_view message) {
    std::size_t at = 0;
    for (std::size_t ordinal = 0; ordinal < mostTexts; ++ordinal) {
        const std::size_t open = message.find('"', at);
        if (open == std::string_view::npos) {
            return;
        }
        const std::size_t start = open + 1;
        const std::size_t plain = plainEnd(message, start);
        const std::size_t end = textEnd(message, plain, least_);
        if (end == std::string_view::npos) {
            return;
        }
        if (end == plain && end - start >= least_ && !isKey(message, end)) {
            texts_.push_back({.escaped = message.substr(start, end - start), .ordinal = ordinal});
        }
        at = end + 1;
    }
}

std::optional<std::string_view> LongTexts::cut(std::string_view message, std::size_t readableAfter) {
    texts_.clear();
    textsPassed_ = 0;
    textsFound_ = 0;
    if (message.size() < least_) {
        return std::nullopt;
    }
    findTexts(message);
    std::size_t size = message.size();
    for (const Text& text : texts_) {
        size -= text.escaped.size();
    }
    if (size > message.size() / 2) {
        texts_.clear();
        return std::nullopt;
    }
    if (rest_.capacity() > keptRest) {
        rest_ = std::string();
    }
    rest_.clear();
    rest_.reserve(size + readableAfter);
    const char* from = message.data();
    for (const Text& text : texts_) {
        rest_.append(from, text.escaped.data());
        from = text.escaped.data() + text.escaped.size();
    }
    rest_.append(from, message.data() + message.size());
    rest_.append(readableAfter, ' ');
    return std::string_view(rest_).substr(0, size);
}

bool LongTexts::passText(const void* place) {
    if (textsFound_ < texts_.size() && texts_[textsFound_].ordinal == textsPassed_) {
        texts_[textsFound_].place = place;
        ++textsFound_;
    }
    ++textsPassed_;
    return textsFound_ < texts_.size();
}

const LongTexts::Text* LongTexts::find(const void* place) const {
    const auto found =
        std::find_if(texts_.begin(), texts_.end(), [&](const Text& text) { return text.place == place; });
    return found == texts_.end() ? nullptr : &*found;
}

const std::string_view* LongTexts::escaped(const void* place) const {
    const Text* text = find(place);
    return text ? &text->escaped : nullptr;
}

std::string_view LongTexts::plain(const void* place) const {
    const Text& text = *find(place);
    if (!text.plain) {
        std::string& plain = text.plain.emplace();
        plain.reserve(text.escaped.size());
        for (std::string_view left = text.escaped; !left.empty();) {
            const std::size_t count = std::min(left.find('\\'), left.size());
            plain.append(left, 0, count);
            left.remove_prefix(std::min(count + 1, left.size()));
        }
    }
    return *text.plain;
}

} // namespace velloway
