#include "phone/History.h"

#include <boost/json.hpp>

#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace velloway::phone::history {

namespace {

namespace json = boost::json;

constexpr std::array<const char*, 12> people{
    "Ada Winter",  "Bruno Falk",  "Chiara Moss",    "Dev Anand Rao", "Elif Soler",
    "Finn Harrow", "Grace Oduya", "Hugo Lindqvist", "Ines Carbó",    "",
    "Kofi Brandt", "Lina Park"};

constexpr std::array<const char*, 14> texts{
    "Are you still coming at seven?",
    "On my way 🚲",
    "Thanks!",
    "I left the keys with the neighbour, second floor, the green door.",
    "Can you send me the address again?",
    "Sure, give me ten minutes.",
    "The train is late, don't wait for me with dinner. There is soup in the fridge and bread on the table.",
    "👍",
    "Happy birthday! 🎉🎂",
    "Did you see the pictures? https://photos.example/lake/2041",
    "No, tomorrow.",
    "Your parcel is at the shop around the corner. Code 4417.",
    "Here is what we need:\nmilk\neggs\ncoffee (the dark one)",
    "ok"};

constexpr double minute = 60'000;

std::string numberOf(std::size_t person) {
    std::string digits = std::to_string(1000 + person * 37 % 9000);
    return "+49 151 555 " + digits;
}

/// Telephones that are not in the address book have no name.
void addName(json::object& entry, std::size_t person) {
    const std::string_view name = people[person % people.size()];
    if (name.empty()) {
        return;
    }
    const std::size_t round = person / people.size();
    entry["name"] = round == 0 ? std::string(name) : std::string(name) + " " + std::to_string(round + 1);
}

} // namespace

std::string smsHistory(std::size_t threads, std::size_t messages, double now) {
    json::array list;
    list.reserve(messages);
    for (std::size_t at = 0; at < messages; ++at) {
        // A step that shares no factor with most counts, so that neighbours belong to different people.
        const std::size_t person = threads == 0 ? 0 : at * 7 % threads;
        json::object entry{
            {"address", numberOf(person)},
            {"body", texts[(at * 5 + person) % texts.size()]},
            {"date", static_cast<std::int64_t>(now - static_cast<double>(messages - at) * 17 * minute)},
            {"type", (at + person) % 3 == 0 ? 2 : 1}};
        addName(entry, person);
        list.push_back(std::move(entry));
    }
    return json::serialize(json::object{{"action", "sms_history"}, {"messages", std::move(list)}});
}

std::string callHistory(std::size_t calls, double now) {
    json::array list;
    for (std::size_t at = 0; at < calls; ++at) {
        const std::int64_t type = static_cast<std::int64_t>(at % 3) + 1;
        json::object entry{{"number", numberOf(at * 5 % 11)},
                           {"date", static_cast<std::int64_t>(now - static_cast<double>(at) * 143 * minute)},
                           {"duration", type == 3 ? 0 : static_cast<std::int64_t>(at * 97 % 1900)},
                           {"type", type}};
        addName(entry, at * 5 % 11);
        list.push_back(std::move(entry));
    }
    return json::serialize(json::object{{"action", "call_history"}, {"calls", std::move(list)}});
}

std::string fromFile(const std::string& path, const std::string& action, const std::string& listKey) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    boost::system::error_code error;
    json::value value = json::parse(text, error);
    if (!error && value.is_array()) {
        return json::serialize(json::object{{"action", action}, {listKey, std::move(value)}});
    }
    if (!error && value.is_object() && value.get_object().contains(listKey)) {
        return text;
    }
    throw std::runtime_error(path + " holds neither a list nor an object with \"" + listKey + "\"");
}

} // namespace velloway::phone::history
