#include "phone/Members.h"
#include "phone/device/Adapters.h"

#include <boost/json/array.hpp>

#include <algorithm>
#include <array>

namespace velloway::phone::device {

namespace {

/// "org.example.chat.android" is called "Chat": the list gives no other name.
std::string appName(std::string package) {
    constexpr std::array<std::string_view, 5> empty{"android", "app", "client", "mobile", "phone"};
    std::size_t dot = package.rfind('.');
    while (dot != std::string::npos &&
           std::find(empty.begin(), empty.end(), std::string_view(package).substr(dot + 1)) != empty.end() &&
           package.find('.') != dot) {
        package.resize(dot);
        dot = package.rfind('.');
    }
    std::string name = dot == std::string::npos ? package : package.substr(dot + 1);
    if (!name.empty() && name[0] >= 'a' && name[0] <= 'z') {
        name[0] = static_cast<char>(name[0] - 'a' + 'A');
    }
    return name;
}

std::string withoutDigits(const std::string& text) {
    std::string rest;
    std::copy_if(text.begin(), text.end(), std::back_inserter(rest), [](char c) { return c < '0' || c > '9'; });
    return rest;
}

bool isOurs(const std::string& package) {
    return package == "com.termux" || package == "com.termux.api";
}

} // namespace

std::vector<NotificationList::Entry> NotificationList::takeNew(const boost::json::value& answer) {
    std::vector<Entry> fresh;
    std::set<std::string> present;
    for (const auto& value : answer.is_array() ? answer.get_array() : boost::json::array()) {
        if (!value.is_object()) {
            continue;
        }
        const auto& object = value.get_object();
        const std::string package = textUnder(object, "packageName");
        Entry entry{textUnder(object, "key"), appName(package), textUnder(object, "title"),
                    textUnder(object, "content"), readTime(textUnder(object, "when"))};
        if (isOurs(package) || (entry.title.empty() && entry.body.empty())) {
            continue;
        }
        const std::string mark = entry.key + '\n' + textUnder(object, "when") + '\n' +
                                 withoutDigits(entry.title) + '\n' + withoutDigits(entry.body);
        present.insert(mark);
        if (seen_ && seen_->count(mark) == 0) {
            fresh.push_back(std::move(entry));
        }
    }
    seen_ = std::move(present);
    std::stable_sort(fresh.begin(), fresh.end(),
                     [](const Entry& a, const Entry& b) { return a.time < b.time; });
    return fresh;
}

} // namespace velloway::phone::device
