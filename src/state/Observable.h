#pragma once

#include "platform/Subscription.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace velloway {

/// The observers of one property. Observers run in the order in which they came, inside the call that changes
/// the property; one may leave, or others join, while they run.
template <class... Args> class ObserverList {
public:
    /// By reference: a copy of a long history for each observer would hold the window up.
    using Observer = std::function<void(const Args&...)>;

    [[nodiscard]] Subscription add(Observer observer) {
        const std::uint64_t id = ++state_->lastId;
        state_->entries.push_back({id, std::make_shared<Observer>(std::move(observer))});
        return Subscription([weak = std::weak_ptr<State>(state_), id] {
            if (auto state = weak.lock()) {
                std::erase_if(state->entries, [id](const Entry& entry) { return entry.id == id; });
            }
        });
    }

    void notify(const Args&... args) const {
        const auto state = state_;
        const auto entries = state->entries;
        for (const Entry& entry : entries) {
            const bool stillThere = std::any_of(state->entries.begin(), state->entries.end(),
                                                [&](const Entry& other) { return other.id == entry.id; });
            if (stillThere) {
                (*entry.observer)(args...);
            }
        }
    }

private:
    struct Entry {
        std::uint64_t id;
        std::shared_ptr<Observer> observer;
    };
    struct State {
        std::vector<Entry> entries;
        std::uint64_t lastId = 0;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

/// A value that reports every assignment to its observers, also of one that leaves it equal. Main thread only.
template <class T> class Observable {
public:
    using Observer = std::function<void(const T&)>;

    explicit Observable(T initial = {}) : value_(std::move(initial)) {}
    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;

    const T& get() const { return value_; }

    void set(T value) {
        value_ = std::move(value);
        observers_.notify(value_);
    }

    /// Changes the value in place, as one assignment.
    template <class Change> void modify(Change change) {
        change(value_);
        observers_.notify(value_);
    }

    [[nodiscard]] Subscription observe(Observer observer) { return observers_.add(std::move(observer)); }

    /// Delivers the present value at once, and every later one.
    [[nodiscard]] Subscription observeWithCurrent(Observer observer) {
        auto subscription = observers_.add(observer);
        observer(value_);
        return subscription;
    }

private:
    T value_;
    ObserverList<T> observers_;
};

} // namespace velloway
