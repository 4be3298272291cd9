#include "phone/device/Adapters.h"

namespace velloway::phone::device {

void SmsSend::send(Caller& caller, const std::string& number, const std::string& body,
                   std::optional<std::int64_t> simSlot) {
    const std::string plain = plainNumber(number);
    if (plain.empty()) {
        caller.note("no message is sent to \"" + number + "\": it is not a telephone number");
        return;
    }
    std::vector<std::string> words{"termux-sms-send", "-n", plain};
    if (simSlot) {
        words.insert(words.end(), {"-s", std::to_string(*simSlot)});
    }
    // The text goes through standard input, where nothing of it can be taken for an option.
    caller.call(std::move(words), body,
                [&caller, plain](const std::string&) { caller.note("the message to " + plain + " is sent"); });
}

} // namespace velloway::phone::device
