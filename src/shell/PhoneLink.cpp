#include "shell/PhoneLink.h"

#include "text/Case.h"
#include "text/Utf8.h"

#include <algorithm>
#include <array>
#include <utility>

namespace velloway {

namespace {

constexpr std::array<std::pair<std::string_view, PhoneLink::Kind>, 3> schemes{{
    {"tel:", PhoneLink::Kind::call},
    {"sms:", PhoneLink::Kind::message},
    {"smsto:", PhoneLink::Kind::message},
}};

int hexValue(char digit) {
    constexpr std::string_view digits = "0123456789abcdef";
    const char lower = digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit;
    const auto at = digits.find(lower);
    return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

std::string percentDecoded(std::string_view text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isEscape = text[at] == '%' && at + 2 < text.size() && hexValue(text[at + 1]) >= 0 &&
                              hexValue(text[at + 2]) >= 0;
        plain += isEscape ? static_cast<char>(hexValue(text[at + 1]) * 16 + hexValue(text[at + 2])) : text[at];
        at += isEscape ? 2 : 0;
    }
    return plain;
}

/// Absent when there is more to it than a number and what is written into numbers to read them better.
std::optional<std::string> dialledNumber(std::string_view written) {
    std::string number;
    for (const char character : written) {
        if ((character >= '0' && character <= '9') || character == '*' || character == '#' ||
            (character == '+' && number.empty())) {
            number += character;
        } else if (std::string_view(" -.()/").find(character) == std::string_view::npos) {
            return std::nullopt;
        }
    }
    return number.empty() || number == "+" ? std::nullopt : std::optional(std::move(number));
}

std::string bodyOf(std::string_view query) {
    constexpr std::string_view key = "body=";
    while (!query.empty()) {
        const std::string_view field = query.substr(0, query.find('&'));
        if (lowerCased(field.substr(0, key.size())) == key) {
            std::string body = repairedUtf8(percentDecoded(field.substr(key.size())));
            std::erase(body, '\0');
            return body;
        }
        query.remove_prefix(std::min(query.size(), field.size() + 1));
    }
    return {};
}

} // namespace

std::optional<PhoneLink> parsePhoneLink(std::string_view address) {
    for (const auto& [scheme, kind] : schemes) {
        if (lowerCased(address.substr(0, scheme.size())) != scheme) {
            continue;
        }
        std::string_view rest = address.substr(scheme.size());
        if (rest.starts_with("//")) {
            rest.remove_prefix(2);
        }
        const auto question = rest.find('?');
        auto number = dialledNumber(percentDecoded(rest.substr(0, rest.find_first_of(";,?"))));
        if (!number) {
            return std::nullopt;
        }
        PhoneLink link{.kind = kind, .number = std::move(*number)};
        if (kind == PhoneLink::Kind::message && question != std::string_view::npos) {
            link.body = bodyOf(rest.substr(question + 1));
        }
        return link;
    }
    return std::nullopt;
}

} // namespace velloway
