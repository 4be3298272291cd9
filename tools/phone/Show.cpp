#include "phone/Show.h"

#include <boost/json.hpp>

#include <cstdio>

namespace velloway::phone {

namespace {

namespace json = boost::json;

constexpr std::size_t shownText = 120;

/// Cuts between characters, never within one.
std::string head(std::string_view text, std::size_t limit) {
    while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0) == 0x80) {
        --limit;
    }
    return std::string(text.substr(0, limit));
}

void cutTexts(json::value& value, std::size_t limit) {
    if (value.is_string() && value.get_string().size() > limit) {
        value = head(value.get_string(), limit) + "…";
    } else if (value.is_object()) {
        for (auto& member : value.get_object()) {
            cutTexts(member.value(), limit);
        }
    } else if (value.is_array()) {
        for (auto& element : value.get_array()) {
            cutTexts(element, limit);
        }
    }
}

std::string shown(const json::value& value) {
    if (value.is_double()) {
        char number[32];
        std::snprintf(number, sizeof number, "%.15g", value.get_double());
        return number;
    }
    std::string text = json::serialize(value);
    if (text.size() <= shownText) {
        return text;
    }
    if (value.is_array()) {
        return "[" + std::to_string(value.get_array().size()) + " entries]";
    }
    if (!value.is_string()) {
        return head(text, shownText) + "…";
    }
    const json::string& whole = value.get_string();
    return json::serialize(json::string(head(whole, 32) + "…")) + " (" + std::to_string(whole.size()) +
           " bytes)";
}

} // namespace

std::string pretty(std::string_view message) {
    boost::system::error_code error;
    const json::value value = json::parse(message, error);
    if (error || !value.is_object()) {
        return "no JSON object: " +
               (message.size() > shownText ? head(message, shownText) + "…" : std::string(message));
    }
    const json::object& object = value.get_object();
    std::string line;
    if (const json::value* action = object.if_contains("action"); action != nullptr && action->is_string()) {
        line = action->get_string();
    }
    for (const auto& member : object) {
        if (member.key() != "action" || !member.value().is_string()) {
            line += (line.empty() ? "" : "  ") + std::string(member.key()) + "=" + shown(member.value());
        }
    }
    return line;
}

std::string shortened(std::string_view message, std::size_t limit) {
    if (message.size() <= limit) {
        return std::string(message);
    }
    boost::system::error_code error;
    json::value value = json::parse(message, error);
    if (error) {
        return std::string(message);
    }
    cutTexts(value, limit);
    return json::serialize(value);
}

} // namespace velloway::phone
