#pragma once

#include "platform/UserDefaults.h"
#include "state/Observable.h"

#include <cstdint>
#include <string_view>

namespace velloway {

/// A field that follows an integer of the user defaults, and writes each change of its own to it.
class StoredField : public Observable<std::int64_t> {
public:
    StoredField(UserDefaults& defaults, std::string_view key, std::int64_t fallback)
        : Observable(stored(defaults, key, fallback)),
          fromDefaults_(defaults.observe(key,
                                         [this](std::int64_t value) {
                                             if (get() != value) {
                                                 set(value);
                                             }
                                         })),
          toDefaults_(observe([&defaults, key, fallback](std::int64_t value) {
              if (stored(defaults, key, fallback) != value) {
                  defaults.setInteger(key, value);
              }
          })) {}

private:
    static std::int64_t stored(const UserDefaults& defaults, std::string_view key, std::int64_t fallback) {
        return defaults.has(key) ? defaults.integer(key) : fallback;
    }

    Subscription fromDefaults_;
    Subscription toDefaults_;
};

} // namespace velloway
