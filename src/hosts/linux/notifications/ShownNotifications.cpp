#include "hosts/linux/notifications/ShownNotifications.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace velloway {

namespace {

constexpr std::size_t maxFromService = 2000;
constexpr std::size_t maxEarlySignals = 256;

} // namespace

ShownNotifications::Shown* ShownNotifications::find(const std::string& identifier) {
    const auto found = shown_.find(identifier);
    return found == shown_.end() ? nullptr : &found->second;
}

const std::string* ShownNotifications::identifierOf(uint serviceId) const {
    const auto found = identifiers_.find(serviceId);
    return found == identifiers_.end() ? nullptr : &found->second;
}

void ShownNotifications::addFromService(const std::string& identifier, Shown shown) {
    takeFromService(identifier);
    identifiers_[shown.serviceId] = identifier;
    shown_[identifier] = std::move(shown);
    if (identifiers_.size() > maxFromService) {
        forgetOldestFromService();
    }
}

void ShownNotifications::addOnBanner(const std::string& identifier, Shown shown) {
    takeFromService(identifier);
    shown.isOnBanner = true;
    shown_[identifier] = std::move(shown);
}

std::vector<std::pair<std::string, ShownNotifications::Shown>> ShownNotifications::onBanners() const {
    std::vector<std::pair<std::string, Shown>> found;
    std::copy_if(shown_.begin(), shown_.end(), std::back_inserter(found),
                 [](const auto& entry) { return entry.second.isOnBanner; });
    std::sort(found.begin(), found.end(),
              [](const auto& a, const auto& b) { return a.second.turn < b.second.turn; });
    return found;
}

uint ShownNotifications::takeFromService(const std::string& identifier) {
    Shown* shown = find(identifier);
    if (!shown) {
        return 0;
    }
    const uint id = std::exchange(shown->serviceId, 0);
    if (id != 0) {
        identifiers_.erase(id);
    }
    eraseIfGone(identifier);
    return id;
}

bool ShownNotifications::takeFromBanner(const std::string& identifier) {
    Shown* shown = find(identifier);
    const bool was = shown && std::exchange(shown->isOnBanner, false);
    eraseIfGone(identifier);
    return was;
}

void ShownNotifications::serviceChanged() {
    early_.clear();
    for (const auto& [id, identifier] : std::exchange(identifiers_, {})) {
        shown_.at(identifier).serviceId = 0;
        eraseIfGone(identifier);
    }
}

void ShownNotifications::forgetOldestFromService() {
    const auto oldest =
        std::min_element(identifiers_.begin(), identifiers_.end(), [&](const auto& a, const auto& b) {
            return shown_.at(a.second).turn < shown_.at(b.second).turn;
        });
    takeFromService(std::string(oldest->second));
}

void ShownNotifications::eraseIfGone(const std::string& identifier) {
    const auto found = shown_.find(identifier);
    if (found != shown_.end() && found->second.serviceId == 0 && !found->second.isOnBanner) {
        shown_.erase(found);
    }
}

void ShownNotifications::keepEarly(uint serviceId, std::function<void()> deliver) {
    if (early_.size() < maxEarlySignals) {
        early_.push_back({serviceId, std::move(deliver)});
    }
}

void ShownNotifications::deliverEarly(uint serviceId) {
    std::vector<EarlySignal> due;
    std::erase_if(early_, [&](EarlySignal& signal) {
        return signal.serviceId == serviceId && (due.push_back(std::move(signal)), true);
    });
    for (const EarlySignal& signal : due) {
        signal.deliver();
    }
}

} // namespace velloway
