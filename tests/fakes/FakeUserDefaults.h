#pragma once

#include "platform/UserDefaults.h"
#include "state/Observable.h"

#include <map>
#include <string>

namespace velloway::test {

class FakeUserDefaults : public UserDefaults {
public:
    std::int64_t integer(std::string_view key) const override {
        const auto found = values.find(key);
        return found == values.end() ? 0 : found->second;
    }
    bool has(std::string_view key) const override { return values.find(key) != values.end(); }
    void setInteger(std::string_view key, std::int64_t value) override {
        values.insert_or_assign(std::string(key), value);
        observers_[std::string(key)].notify(value);
    }
    Subscription observe(std::string_view key, std::function<void(std::int64_t)> observer) override {
        return observers_[std::string(key)].add(std::move(observer));
    }

    std::map<std::string, std::int64_t, std::less<>> values;

private:
    std::map<std::string, ObserverList<std::int64_t>> observers_;
};

} // namespace velloway::test
