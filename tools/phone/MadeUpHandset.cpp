#include "phone/MadeUpHandset.h"

#include "phone/Messages.h"
#include "phone/Numbers.h"

namespace velloway::phone {

void MadeUpHandset::sayAll(const std::vector<std::string>& messages) const {
    for (const std::string& message : messages) {
        say(message);
    }
}

void MadeUpHandset::sayCommand(const char* command) const {
    World world = world_;
    world.now = millisecondsNow();
    for (const Action& action : parseCommand(command, world)) {
        say(std::get<SendText>(action).text);
    }
}

void MadeUpHandset::sendIntroduction() {
    sayCommand("hello");
}

void MadeUpHandset::sendSmsHistory() {
    sayCommand("sms_history");
}

void MadeUpHandset::sendCallHistory() {
    sayCommand("call_history");
}

void MadeUpHandset::sendClipboard() {
    say(messages::clipboard(clipboard_));
}

void MadeUpHandset::sendBattery() {
    say(messages::batteryStatus(64, false));
}

void MadeUpHandset::ring(const std::string& number, const std::string& name) {
    sayAll(call_.ring(number, name));
}

void MadeUpHandset::makeCall(const std::string& number, std::int64_t) {
    sayAll(call_.dial(number));
    tick();
}

void MadeUpHandset::answerCall() {
    sayAll(call_.answer());
    tick();
}

void MadeUpHandset::hangUpCall() {
    sayAll(call_.hangUp());
}

void MadeUpHandset::tick() {
    if (call_.state() == Call::State::offHook) {
        timer_ = services_.after(1, [this] {
            sayAll(call_.tick());
            tick();
        });
    }
}

} // namespace velloway::phone
