#pragma once

#include "state/Observable.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace velloway {

/// A value that is worked out from observable ones at each reading. Main thread only. The sources must outlive
/// it.
template <class T> class Computed {
public:
    template <class... Sources> explicit Computed(std::function<T()> compute, Sources&... sources)
        : compute_(std::move(compute)) {
        (follow_.push_back([&sources](const std::function<void()>& changed) {
            return sources.observe([changed](const auto&...) { changed(); });
        }),
         ...);
    }

    T get() const { return compute_(); }

    /// Calls back after each change of a source; a step that changes several of them calls back several times.
    [[nodiscard]] Subscription observe(const std::function<void()>& changed) const {
        auto subscriptions = std::make_shared<std::vector<Subscription>>();
        for (const auto& follow : follow_) {
            subscriptions->push_back(follow(changed));
        }
        return Subscription([subscriptions] { subscriptions->clear(); });
    }

private:
    std::function<T()> compute_;
    std::vector<std::function<Subscription(const std::function<void()>&)>> follow_;
};

} // namespace velloway
