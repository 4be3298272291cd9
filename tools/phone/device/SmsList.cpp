#include "phone/Members.h"
#include "phone/device/Adapters.h"

#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>

#include <algorithm>

namespace velloway::phone::device {

namespace json = boost::json;

std::vector<std::string> SmsList::words(int limit) {
    return {"termux-sms-list", "-t", "all", "-l", std::to_string(limit)};
}

std::vector<Sms> SmsList::read(const json::value& answer, const Contacts& contacts) {
    std::vector<Sms> list;
    if (!answer.is_array()) {
        return list;
    }
    for (const json::value& value : answer.get_array()) {
        if (!value.is_object()) {
            continue;
        }
        const json::object& entry = value.get_object();
        const std::string type = textUnder(entry, "type");
        const auto time = readTime(textUnder(entry, "received"));
        if ((type != "inbox" && type != "sent") || !time) {
            continue;
        }
        Sms sms;
        sms.address =
            textUnder(entry, "address").empty() ? textUnder(entry, "number") : textUnder(entry, "address");
        sms.isSent = type == "sent";
        // The sender of what was sent is the phone's owner.
        sms.name = sms.isSent ? std::string() : textUnder(entry, "sender");
        if (sms.name.empty()) {
            sms.name = contacts.nameOf(sms.address);
        }
        sms.body = textUnder(entry, "body");
        // The computer tells messages apart by their dates, and this log knows only seconds.
        sms.date = *time + integerUnder(entry, "_id").value_or(0) % 1000;
        list.push_back(std::move(sms));
    }
    std::stable_sort(list.begin(), list.end(), [](const Sms& a, const Sms& b) { return a.date < b.date; });
    return list;
}

std::string SmsList::message(const std::vector<Sms>& list) {
    json::array messages;
    for (const Sms& sms : list) {
        json::object entry{
            {"address", sms.address}, {"body", sms.body}, {"date", sms.date}, {"type", sms.isSent ? 2 : 1}};
        if (!sms.name.empty()) {
            entry["name"] = sms.name;
        }
        messages.push_back(std::move(entry));
    }
    return json::serialize(json::object{{"action", "sms_history"}, {"messages", std::move(messages)}});
}

} // namespace velloway::phone::device
