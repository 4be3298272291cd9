#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velloway::phone {

/// How the phone's one call reacts to the computer. Knows no clock: `tick` is to be called once a second.
class Call {
public:
    enum class State { idle, ringing, offHook };

    // Each returns the messages that the phone says now, in order.
    std::vector<std::string> ring(const std::string& number, const std::string& name);
    std::vector<std::string> dial(const std::string& number);
    std::vector<std::string> answer();
    std::vector<std::string> hangUp();
    std::vector<std::string> tick();

    State state() const { return state_; }

private:
    State state_ = State::idle;
    std::string number_;
    std::string name_;
    std::int64_t seconds_ = 0;
};

} // namespace velloway::phone
