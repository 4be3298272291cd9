#pragma once

#include "platform/Log.h"

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

class FakeLog : public Log {
public:
    void line(std::initializer_list<std::string_view> pieces) override {
        std::string whole;
        for (std::string_view piece : pieces) {
            whole.append(piece);
        }
        if (onLine) {
            onLine(whole);
        }
        const std::lock_guard lock(mutex_);
        lines_.push_back(std::move(whole));
    }

    /// Called on the thread that logs. To be set only while no other thread does.
    std::function<void(const std::string&)> onLine;

    std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    std::vector<std::string> take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

} // namespace velloway::test
