#include "phone/Members.h"
#include "phone/device/Adapters.h"

#include <boost/json/array.hpp>

namespace velloway::phone::device {

namespace {

std::string tail(std::string_view number) {
    std::string digits;
    for (const char letter : number) {
        if (letter >= '0' && letter <= '9') {
            digits += letter;
        }
    }
    constexpr std::size_t compared = 9;
    return digits.size() > compared ? digits.substr(digits.size() - compared) : digits;
}

} // namespace

std::map<std::string, std::string> Contacts::read(const boost::json::value& answer) {
    std::map<std::string, std::string> names;
    if (answer.is_array()) {
        for (const auto& entry : answer.get_array()) {
            if (entry.is_object()) {
                const std::string digits = tail(textUnder(entry.get_object(), "number"));
                if (!digits.empty()) {
                    names.emplace(digits, textUnder(entry.get_object(), "name"));
                }
            }
        }
    }
    return names;
}

void Contacts::load(Caller& caller, std::function<void()> done) {
    if (isLoaded_) {
        done();
        return;
    }
    caller.poll(
        {"termux-contact-list"},
        [this, done](const boost::json::value& answer) {
            names_ = read(answer);
            isLoaded_ = true;
            done();
        },
        done);
}

std::string Contacts::nameOf(std::string_view number) const {
    const auto found = names_.find(tail(number));
    return found == names_.end() ? std::string() : found->second;
}

} // namespace velloway::phone::device
