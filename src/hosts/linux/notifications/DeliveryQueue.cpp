#include "hosts/linux/notifications/DeliveryQueue.h"

#include <utility>

namespace velloway {

namespace {

/// Across all identifiers.
constexpr std::size_t maxUnderWay = 2000;
constexpr auto tooMany = "Too many notifications are waiting to be shown.";

void complete(const DeliveryQueue::Completion& completion, const std::optional<std::string>& error) {
    if (completion) {
        completion(error);
    }
}

} // namespace

void DeliveryQueue::add(NotificationRequest request, Completion completion) {
    const std::string identifier = request.identifier;
    if (!entries_.contains(identifier)) {
        makeRoom();
    }
    Delivery delivery{.request = std::move(request), .completion = std::move(completion)};
    if (const auto found = entries_.find(identifier); found != entries_.end()) {
        const auto superseded = std::exchange(found->second.next, std::move(delivery));
        if (superseded) {
            complete(superseded->completion, std::nullopt);
        }
    } else if (entries_.size() >= maxUnderWay) {
        complete(delivery.completion, tooMany);
    } else {
        start(entries_.emplace(identifier, Entry{std::move(delivery), std::nullopt}).first->second.current);
    }
}

bool DeliveryQueue::addMove(NotificationRequest request, unsigned options) {
    if (entries_.size() >= maxUnderWay || entries_.contains(request.identifier)) {
        return false;
    }
    const std::string identifier = request.identifier;
    Delivery move{.request = std::move(request), .completion = {}, .options = options, .isMove = true};
    Delivery& delivery =
        entries_.emplace(identifier, Entry{std::move(move), std::nullopt}).first->second.current;
    delivery.turn = ++turns_;
    waiting_.emplace(delivery.turn, identifier);
    makeReady(delivery);
    return true;
}

/// One that ends may bring the one behind it under way.
void DeliveryQueue::makeRoom() {
    while (entries_.size() >= maxUnderWay && !waiting_.empty()) {
        finish(*find(std::string(waiting_.begin()->second)), tooMany);
    }
}

void DeliveryQueue::start(Delivery& delivery) {
    delivery.turn = ++turns_;
    waiting_.emplace(delivery.turn, delivery.request.identifier);
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
    waiting_.emplace(delivery.turn, delivery.request.identifier);
    ready_.emplace(delivery.turn, delivery.request.identifier);
}

DeliveryQueue::Delivery* DeliveryQueue::takeReady() {
    if (ready_.empty()) {
        return nullptr;
    }
    const std::string identifier = std::move(ready_.extract(ready_.begin()).mapped());
    return find(identifier);
}

void DeliveryQueue::markSent(Delivery& delivery) {
    delivery.stage = Stage::sent;
    waiting_.erase(delivery.turn);
}

void DeliveryQueue::finish(Delivery& delivery, const std::optional<std::string>& error) {
    const auto found = entries_.find(delivery.request.identifier);
    const Completion completion = std::move(delivery.completion);
    waiting_.erase(delivery.turn);
    ready_.erase(delivery.turn);
    if (auto next = std::exchange(found->second.next, std::nullopt)) {
        found->second.current = std::move(*next);
        start(found->second.current);
    } else {
        entries_.erase(found);
    }
    complete(completion, error);
}

} // namespace velloway
