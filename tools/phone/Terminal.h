#pragma once

#include "phone/Loop.h"

#include <functional>
#include <string>
#include <thread>

namespace velloway::phone {

/// Standard input, read on a thread of its own. The callbacks come on the loop.
class Terminal {
public:
    Terminal(Loop& loop, std::function<void(std::string bytes)> bytes, std::function<void()> end);
    ~Terminal();

    /// Keys come one by one and unseen while raw. Does nothing when standard input is no terminal.
    void setRaw(bool isRaw);

private:
    void read();

    Loop& loop_;
    std::function<void(std::string)> bytes_;
    std::function<void()> end_;
    int wake_[2] = {-1, -1};
    bool isRaw_ = false;
    std::thread thread_;
};

} // namespace velloway::phone
