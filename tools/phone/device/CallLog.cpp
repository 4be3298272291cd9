#include "phone/Members.h"
#include "phone/device/Adapters.h"

#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>

namespace velloway::phone::device {

namespace json = boost::json;

namespace {

/// "02:05" and "01:02:05" in seconds.
std::int64_t readDuration(const std::string& text) {
    std::int64_t seconds = 0;
    std::int64_t part = 0;
    for (const char letter : text) {
        if (letter == ':') {
            seconds = (seconds + part) * 60;
            part = 0;
        } else if (letter >= '0' && letter <= '9') {
            part = part * 10 + (letter - '0');
        }
    }
    return seconds + part;
}

int readType(const std::string& type) {
    if (type == "OUTGOING") {
        return 2;
    }
    return type == "MISSED" || type == "REJECTED" || type == "BLOCKED" ? 3 : 1;
}

} // namespace

std::vector<std::string> CallLog::words(int limit) {
    return {"termux-call-log", "-l", std::to_string(limit)};
}

std::string CallLog::message(const json::value& answer, const Contacts& contacts) {
    json::array calls;
    for (const json::value& value : answer.is_array() ? answer.get_array() : json::array()) {
        if (!value.is_object()) {
            continue;
        }
        const json::object& entry = value.get_object();
        const std::string number = textUnder(entry, "phone_number");
        const auto time = readTime(textUnder(entry, "date"));
        if (!time) {
            continue;
        }
        json::object call{{"number", number},
                          {"date", *time},
                          {"duration", readDuration(textUnder(entry, "duration"))},
                          {"type", readType(textUnder(entry, "type"))}};
        std::string name = textUnder(entry, "name");
        if (name.empty() || name == "UNKNOWN_CALLER") {
            name = contacts.nameOf(number);
        }
        if (!name.empty()) {
            call["name"] = name;
        }
        calls.push_back(std::move(call));
    }
    return json::serialize(json::object{{"action", "call_history"}, {"calls", std::move(calls)}});
}

std::string CallLog::mark(const json::value& answer) {
    return json::serialize(answer);
}

} // namespace velloway::phone::device
