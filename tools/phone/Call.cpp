#include "phone/Call.h"

#include "phone/Messages.h"

namespace velloway::phone {

std::vector<std::string> Call::ring(const std::string& number, const std::string& name) {
    state_ = State::ringing;
    number_ = number;
    name_ = name;
    return {messages::incomingCall(number, name)};
}

std::vector<std::string> Call::dial(const std::string& number) {
    state_ = State::offHook;
    number_ = number;
    name_.clear();
    seconds_ = 0;
    return {messages::callState("OFFHOOK", number_, name_)};
}

std::vector<std::string> Call::answer() {
    if (state_ != State::ringing) {
        return {};
    }
    state_ = State::offHook;
    seconds_ = 0;
    return {messages::callState("OFFHOOK", number_, name_), messages::callUpdate(0)};
}

std::vector<std::string> Call::hangUp() {
    if (state_ == State::idle) {
        return {};
    }
    state_ = State::idle;
    return {messages::callEnded()};
}

std::vector<std::string> Call::tick() {
    if (state_ != State::offHook) {
        return {};
    }
    return {messages::callUpdate(++seconds_)};
}

} // namespace velloway::phone
