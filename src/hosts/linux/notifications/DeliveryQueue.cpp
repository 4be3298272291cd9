#include "hosts/linux/notifications/DeliveryQueue.h"

#include <algorithm>

namespace velloway {

namespace {

/// Across all identifiers.
constexpr std::size_t maxUnderWay = 2000;

void complete(const DeliveryQueue::Completion& completion, const std::optional<std::string>& error) {
    if (completion) {
        completion(error);
    }
}

} // namespace

void DeliveryQueue::add(NotificationRequest request, Completion completion) {
    const std::string identifier = request.identifier;
    Delivery delivery{.request = std::move(request), .completion = std::move(completion)};
    if (const auto found = entries_.find(identifier); found != entries_.end()) {
        const auto superseded = std::exchange(found->second.next, std::move(delivery));
        if (superseded) {
            complete(superseded->completion, std::nullopt);
        }
    } else if (entries_.size() >= maxUnderWay) {
        complete(delivery.completion, "Too many notifications are waiting to be shown.");
    } else {
        start(entries_.emplace(identifier, Entry{std::move(delivery), std::nullopt}).first->second.current);
    }
}

void DeliveryQueue::start(Delivery& delivery) {
    delivery.turn = ++turns_;
    started_(delivery);
}

void DeliveryQueue::removePending(const std::string& identifier) {
    const auto found = entries_.find(identifier);
    if (found == entries_.end()) {
        return;
    }
    if (const auto dropped = std::exchange(found->second.next, std::nullopt)) {
        complete(dropped->completion, std::nullopt);
    }
    if (found->second.current.stage != Stage::sent) {
        finish(found->second.current, std::nullopt);
    }
}

DeliveryQueue::Delivery* DeliveryQueue::find(const std::string& identifier) {
    const auto found = entries_.find(identifier);
    return found == entries_.end() ? nullptr : &found->second.current;
}

DeliveryQueue::Delivery* DeliveryQueue::find(const std::string& identifier, std::uint64_t turn, Stage stage) {
    Delivery* delivery = find(identifier);
    return delivery && delivery->turn == turn && delivery->stage == stage ? delivery : nullptr;
}

void DeliveryQueue::makeReady(Delivery& delivery) {
    delivery.stage = Stage::ready;
    ready_.emplace_back(delivery.request.identifier, delivery.turn);
}

void DeliveryQueue::makeReadyAgain(Delivery& delivery) {
    delivery.stage = Stage::ready;
    const auto later = std::find_if(ready_.begin(), ready_.end(),
                                    [&](const auto& waiting) { return waiting.second > delivery.turn; });
    ready_.emplace(later, delivery.request.identifier, delivery.turn);
}

DeliveryQueue::Delivery* DeliveryQueue::takeReady() {
    while (!ready_.empty()) {
        const auto [identifier, turn] = std::move(ready_.front());
        ready_.pop_front();
        if (Delivery* delivery = find(identifier, turn, Stage::ready)) {
            return delivery;
        }
    }
    return nullptr;
}

void DeliveryQueue::finish(Delivery& delivery, const std::optional<std::string>& error) {
    const auto found = entries_.find(delivery.request.identifier);
    const Completion completion = std::move(delivery.completion);
    if (auto next = std::exchange(found->second.next, std::nullopt)) {
        found->second.current = std::move(*next);
        start(found->second.current);
    } else {
        entries_.erase(found);
    }
    complete(completion, error);
}

} // namespace velloway
