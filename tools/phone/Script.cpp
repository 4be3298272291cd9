#include "phone/Script.h"

#include <boost/json.hpp>

#include <stdexcept>

namespace velloway::phone {

namespace {

namespace json = boost::json;

std::optional<double> seconds(const json::object& line, const char* key) {
    const json::value* value = line.if_contains(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_number() || value->to_number<double>() < 0) {
        throw std::invalid_argument(std::string("\"") + key + "\" is no number of seconds");
    }
    return value->to_number<double>();
}

void refuseUnknownKeys(const json::object& line) {
    for (const auto& member : line) {
        const std::string_view key = member.key();
        if (key != "at" && key != "after" && key != "send" && key != "do" && key != "expect" &&
            key != "within") {
            throw std::invalid_argument("\"" + std::string(key) + "\" means nothing here");
        }
    }
}

std::vector<Action> actionsOf(const json::object& line, const World& world) {
    const json::value* send = line.if_contains("send");
    const json::value* command = line.if_contains("do");
    const json::value* expect = line.if_contains("expect");
    if ((send != nullptr) + (command != nullptr) + (expect != nullptr) != 1) {
        throw std::invalid_argument("a line holds one of \"send\", \"do\" and \"expect\"");
    }
    const auto within = seconds(line, "within");
    if (within && expect == nullptr) {
        throw std::invalid_argument("\"within\" belongs to \"expect\"");
    }
    if (send != nullptr) {
        return {SendText{json::serialize(*send)}};
    }
    if (expect != nullptr) {
        return {Expect{json::serialize(*expect), within.value_or(5)}};
    }
    if (!command->is_string()) {
        throw std::invalid_argument("\"do\" is no text");
    }
    return parseCommand(std::string_view(command->get_string()), world);
}

Step parseLine(std::string_view text, const World& world) {
    boost::system::error_code error;
    const json::value value = json::parse(text, error);
    if (error || !value.is_object()) {
        throw std::invalid_argument("no JSON object");
    }
    const json::object& line = value.get_object();
    refuseUnknownKeys(line);
    Step step{seconds(line, "at"), seconds(line, "after"), actionsOf(line, world)};
    if (step.at && step.after) {
        throw std::invalid_argument("\"at\" and \"after\" exclude each other");
    }
    return step;
}

bool holds(const json::value& message, const json::value& pattern) {
    if (pattern.is_string() && pattern.get_string() == "*") {
        return true;
    }
    if (pattern.is_object()) {
        if (!message.is_object()) {
            return false;
        }
        for (const auto& member : pattern.get_object()) {
            const json::value* value = message.get_object().if_contains(member.key());
            if (value == nullptr || !holds(*value, member.value())) {
                return false;
            }
        }
        return true;
    }
    if (pattern.is_array()) {
        if (!message.is_array() || message.get_array().size() != pattern.get_array().size()) {
            return false;
        }
        for (std::size_t at = 0; at < pattern.get_array().size(); ++at) {
            if (!holds(message.get_array()[at], pattern.get_array()[at])) {
                return false;
            }
        }
        return true;
    }
    return message == pattern;
}

} // namespace

std::vector<Step> parseScript(std::string_view text, const World& world) {
    std::vector<Step> steps;
    std::size_t number = 0;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? "" : text.substr(end + 1);
        ++number;
        const std::size_t begin = line.find_first_not_of(" \t\r");
        if (begin == std::string_view::npos || line[begin] == '#') {
            continue;
        }
        try {
            steps.push_back(parseLine(line, world));
        } catch (const std::exception& error) {
            throw std::invalid_argument("line " + std::to_string(number) + ": " + error.what());
        }
    }
    return steps;
}

bool matches(std::string_view pattern, std::string_view message) {
    boost::system::error_code patternError;
    boost::system::error_code messageError;
    const json::value wanted = json::parse(pattern, patternError);
    const json::value got = json::parse(message, messageError);
    return !patternError && !messageError && holds(got, wanted);
}

} // namespace velloway::phone
