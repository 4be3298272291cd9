#include "phone/Base64.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace velloway::phone {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> makeValues() {
    std::array<std::int8_t, 256> values{};
    values.fill(-1);
    for (std::size_t at = 0; at < alphabet.size(); ++at) {
        values[static_cast<unsigned char>(alphabet[at])] = static_cast<std::int8_t>(at);
    }
    return values;
}

constexpr auto values = makeValues();

} // namespace

std::string encodeBase64(std::string_view bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        std::uint32_t group = 0;
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
        for (std::size_t byte = 0; byte < 3; ++byte) {
            group = group << 8 | (byte < count ? static_cast<unsigned char>(bytes[at + byte]) : 0u);
        }
        for (std::size_t digit = 0; digit < 4; ++digit) {
            out += digit <= count ? alphabet[group >> (18 - 6 * digit) & 63] : '=';
        }
    }
    return out;
}

std::optional<std::string> decodeBase64(std::string_view text) {
    std::string digits(text);
    std::erase_if(digits, [](char letter) { return letter == '\n' || letter == '\r'; });
    if (digits.size() % 4 != 0) {
        return std::nullopt;
    }
    std::size_t padding = 0;
    while (padding < 2 && padding < digits.size() && digits[digits.size() - 1 - padding] == '=') {
        ++padding;
    }
    std::fill(digits.end() - static_cast<std::ptrdiff_t>(padding), digits.end(), 'A');

    std::string out;
    out.reserve(digits.size() / 4 * 3);
    for (std::size_t at = 0; at < digits.size(); at += 4) {
        std::uint32_t group = 0;
        for (std::size_t digit = 0; digit < 4; ++digit) {
            const int value = values[static_cast<unsigned char>(digits[at + digit])];
            if (value < 0) {
                return std::nullopt;
            }
            group = group << 6 | static_cast<std::uint32_t>(value);
        }
        for (const int shift : {16, 8, 0}) {
            out += static_cast<char>(group >> shift & 255);
        }
    }
    out.resize(out.size() - padding);
    return out;
}

} // namespace velloway::phone
