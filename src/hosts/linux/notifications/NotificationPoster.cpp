#include "hosts/linux/notifications/NotificationPoster.h"

#include "hosts/linux/notifications/NotificationActions.h"
#include "hosts/linux/notifications/NotificationCall.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace velloway {

namespace {

/// Calls that the service has not answered yet: enough to keep it busy, few enough not to swamp it.
constexpr std::size_t maxInFlight = 16;
constexpr int maxAttempts = 3;
constexpr auto pauseWhenTooMany = std::chrono::seconds(1);
constexpr unsigned withoutDelegate = presentationOptions::banner | presentationOptions::sound;

constexpr auto noRoomOnBanners = "Too many notifications are waiting to be shown.";
constexpr auto nowhereToShow = "There is no notification service and no display to show the notification on.";

} // namespace

NotificationPoster::NotificationPoster(DispatchQueue& main)
    : main_(main),
      deliveries_([this](Delivery& delivery) { askDelegate(delivery); }),
      banners_(
          {.replied = [this](const auto& identifier, const auto& action,
                             const QString& text) { takeReply(identifier, action, text); },
           .clicked = [this](const auto& identifier) { respond(identifier, notificationActions::clicked); },
           .dismissed = [this](const auto& identifier) { respond(identifier, notificationActions::dismissed); },
           .gone = [this](const auto& identifier) { bannerGone(identifier); }}),
      service_(main, {.closed = [this](uint id, uint reason) { closed(id, reason); },
                      .actionInvoked = [this](uint id, const QString& key) { actionInvoked(id, key); },
                      .replied = [this](uint id, const QString& text) { replied(id, text); },
                      .ownerChanged = [this] { serviceChanged(); },
                      .becameAvailable = [this] { serviceBecameAvailable(); }}) {}

void NotificationPoster::keepIdentifier(const std::string& name, ImmutableText identifier) {
    longIdentifiers_.keep(name, std::move(identifier), [this](const std::string& kept) {
        return deliveries_.find(kept) || shown_.find(kept) || banners_.isReplyOpen(kept);
    });
}

void NotificationPoster::add(NotificationRequest request, Completion completion) {
    deliveries_.add(std::move(request), std::move(completion));
}

void NotificationPoster::removeDelivered(const std::string& identifier) {
    if (Delivery* delivery = deliveries_.find(identifier)) {
        delivery->isRemoved = delivery->stage == DeliveryQueue::Stage::sent;
    }
    endMove(identifier);
    closeAtService(identifier);
    if (shown_.takeFromBanner(identifier)) {
        banners_.close(identifier);
        showMoreLater();
    }
}

// The delegate decides.

void NotificationPoster::askDelegate(Delivery& delivery) {
    const std::string identifier = delivery.request.identifier;
    auto* delegate = delegate_.load();
    if (!delegate) {
        presentationDecided(identifier, delivery.turn, withoutDelegate);
        return;
    }
    auto decided = [weak = weak_from_this(), &main = main_, identifier,
                    turn = delivery.turn](unsigned options) {
        hop(main, weak, [=](auto& self) { self.presentationDecided(identifier, turn, options); });
    };
    const NotificationRequest asked{longIdentifiers_.identifierOf(identifier), delivery.request.content};
    delegate->willPresent(asked, std::move(decided));
}

void NotificationPoster::presentationDecided(const std::string& identifier, std::uint64_t turn,
                                             unsigned options) {
    Delivery* delivery = deliveries_.find(identifier, turn, DeliveryQueue::Stage::askingDelegate);
    if (!delivery) {
        return;
    }
    if (!(options & presentationOptions::banner)) {
        deliveries_.finish(*delivery, std::nullopt);
        return;
    }
    delivery->options = options;
    deliveries_.makeReady(*delivery);
    sendReady();
}

// To the service.

void NotificationPoster::sendReady() {
    while (deliveries_.hasReady() && !isPaused_ && inFlight_ < maxInFlight) {
        if (!capabilities_) {
            askCapabilities();
            return;
        }
        if (Delivery* delivery = deliveries_.takeReady()) {
            send(*delivery);
        }
    }
}

void NotificationPoster::askCapabilities() {
    if (std::exchange(isAskingCapabilities_, true)) {
        return;
    }
    service_.askCapabilities([this](const QStringList* names) {
        isAskingCapabilities_ = false;
        if (names) {
            capabilities_ = NotificationCapabilities::from(*names);
            sendReady();
        } else {
            showReadyOnBanners();
        }
    });
}

/// What finds no room stays ready, for the service or for a banner, whichever comes first.
void NotificationPoster::showReadyOnBanners() {
    while (!BannerFallback::canShow() || banners_.hasRoom()) {
        Delivery* delivery = deliveries_.takeReady();
        if (!delivery) {
            return;
        }
        showOnBanner(*delivery);
    }
}

void NotificationPoster::send(Delivery& delivery) {
    const NotificationContent& content = delivery.request.content;
    const Reply reply = replyActionOf(content);
    if (reply && !capabilities_->actions && !capabilities_->inlineReply && banners_.hasRoom()) {
        showOnBanner(delivery);
        return;
    }
    deliveries_.markSent(delivery);
    ++inFlight_;
    const std::string identifier = delivery.request.identifier;
    const auto* before = shown_.find(identifier);
    service_.notify(
        notificationCall(content, reply, delivery.options, before ? before->serviceId : 0, *capabilities_),
        [this, identifier, turn = delivery.turn](const NotificationService::Answer& answer) {
            answered(identifier, turn, answer);
        },
        [this, identifier, turn = delivery.turn] { overdue(identifier, turn); });
}

void NotificationPoster::answered(const std::string& identifier, std::uint64_t turn,
                                  const NotificationService::Answer& answer) {
    if (Delivery* delivery = deliveries_.find(identifier, turn, DeliveryQueue::Stage::sent)) {
        --inFlight_;
        act(*delivery, answer);
        if (inFlight_ == 0) {
            shown_.dropEarly();
        }
        sendReady();
    } else if (answer.outcome == NotificationService::Outcome::shown) {
        service_.close(answer.id);
    }
}

void NotificationPoster::act(Delivery& delivery, const NotificationService::Answer& answer) {
    using Outcome = NotificationService::Outcome;
    switch (answer.outcome) {
    case Outcome::shown:
        return shownByService(delivery, answer.id);
    case Outcome::refused:
        return deliveries_.finish(delivery, answer.errorText.toStdString());
    case Outcome::unavailable:
        capabilities_.reset();
        return banners_.hasRoom() ? showOnBanner(delivery) : tryAgain(delivery);
    case Outcome::tooMany:
        pauseSending();
        return tryAgain(delivery);
    case Outcome::ownerGone:
        return tryAgain(delivery);
    }
}

void NotificationPoster::overdue(const std::string& identifier, std::uint64_t turn) {
    Delivery* delivery = deliveries_.find(identifier, turn, DeliveryQueue::Stage::sent);
    if (delivery && (delivery->isRemoved || putOnBanner(*delivery))) {
        --inFlight_;
        deliveries_.finish(*delivery, std::nullopt);
    }
    capabilities_.reset();
    sendReady();
}

void NotificationPoster::tryAgain(Delivery& delivery) {
    if (delivery.isRemoved) {
        deliveries_.finish(delivery, std::nullopt);
    } else if (++delivery.attempts >= maxAttempts) {
        showOnBanner(delivery);
    } else {
        deliveries_.makeReady(delivery);
    }
}

void NotificationPoster::pauseSending() {
    if (std::exchange(isPaused_, true)) {
        return;
    }
    main_.asyncAfter(pauseWhenTooMany, [weak = weak_from_this()] {
        if (auto self = weak.lock()) {
            self->isPaused_ = false;
            self->sendReady();
        }
    });
}

void NotificationPoster::shownByService(Delivery& delivery, uint id) {
    const std::string identifier = delivery.request.identifier;
    if (const auto* before = shown_.find(identifier); before && before->serviceId != id) {
        closeAtService(identifier);
    }
    if (shown_.takeFromBanner(identifier)) {
        banners_.close(identifier);
    }
    shown_.addFromService(identifier, {.serviceId = id,
                                       .content = delivery.request.content,
                                       .reply = replyActionOf(delivery.request.content),
                                       .turn = delivery.turn});
    if (delivery.isRemoved) {
        closeAtService(identifier);
    }
    deliveries_.finish(delivery, std::nullopt);
    shown_.deliverEarly(id);
}

// To our own banner.

void NotificationPoster::showOnBanner(Delivery& delivery) {
    if (delivery.isRemoved) {
        deliveries_.finish(delivery, std::nullopt);
    } else if (!BannerFallback::canShow()) {
        deliveries_.finish(delivery, nowhereToShow);
    } else {
        const bool isShown = putOnBanner(delivery);
        deliveries_.finish(delivery, isShown ? std::nullopt : std::optional<std::string>(noRoomOnBanners));
    }
}

bool NotificationPoster::putOnBanner(Delivery& delivery) {
    if (delivery.isMove) {
        return true;
    }
    const std::string& identifier = delivery.request.identifier;
    const NotificationContent& content = delivery.request.content;
    const Reply reply = replyActionOf(content);
    if (!banners_.show(identifier, content, reply)) {
        return false;
    }
    closeAtService(identifier);
    shown_.addOnBanner(
        identifier, {.content = content, .reply = reply, .options = delivery.options, .turn = delivery.turn});
    return true;
}

void NotificationPoster::bannerGone(const std::string& identifier) {
    shown_.takeFromBanner(identifier);
    endMove(identifier);
    showMoreLater();
}

void NotificationPoster::showMoreLater() {
    // The place on screen is free only after this.
    hop(main_, weak_from_this(), [](auto& self) { self.sendReady(); });
}

void NotificationPoster::endMove(const std::string& identifier) {
    Delivery* delivery = deliveries_.find(identifier);
    if (!delivery || !delivery->isMove) {
        return;
    }
    if (delivery->stage == DeliveryQueue::Stage::sent) {
        delivery->isRemoved = true;
    } else {
        deliveries_.finish(*delivery, std::nullopt);
    }
}

/// Our banners would cover what the service shows. What the user has seen already makes no second sound.
void NotificationPoster::moveBannersToService() {
    for (const auto& [identifier, shown] : shown_.onBanners()) {
        if (!banners_.isInUse(identifier)) {
            const unsigned silenced = banners_.isOnScreen(identifier) ? presentationOptions::sound : 0;
            deliveries_.addMove({identifier, shown.content}, shown.options & ~silenced);
        }
    }
}

void NotificationPoster::closeAtService(const std::string& identifier) {
    if (const uint id = shown_.takeFromService(identifier)) {
        service_.close(id);
    }
}

void NotificationPoster::serviceChanged() {
    capabilities_.reset();
    shown_.serviceChanged();
}

void NotificationPoster::serviceBecameAvailable() {
    moveBannersToService();
    sendReady();
}

// What the user does.

void NotificationPoster::closed(uint id, uint reason) {
    const std::string* known = shown_.identifierOf(id);
    if (!known) {
        if (inFlight_ > 0) {
            shown_.keepEarly(id, [this, id, reason] { closed(id, reason); });
        }
        return;
    }
    const std::string identifier = *known;
    const bool wasAnswered = shown_.find(identifier)->wasAnswered;
    shown_.takeFromService(identifier);
    if (reason == NotificationService::dismissedByUser && !wasAnswered) {
        respond(identifier, notificationActions::dismissed);
    }
}

void NotificationPoster::actionInvoked(uint id, const QString& key) {
    const std::string* known = shown_.identifierOf(id);
    if (!known) {
        if (inFlight_ > 0) {
            shown_.keepEarly(id, [this, id, key] { actionInvoked(id, key); });
        }
        return;
    }
    // A service that takes the reply itself sends the text in a signal of its own.
    if (key == inlineReplyKey) {
        return;
    }
    const std::string identifier = *known;
    auto* shown = shown_.find(identifier);
    shown->wasAnswered = true;
    if (shown->reply && key.toStdString() == shown->reply->identifier) {
        banners_.openReply(identifier, shown->content, *shown->reply);
    } else {
        respond(identifier, key.toStdString());
    }
}

void NotificationPoster::replied(uint id, const QString& text) {
    const std::string* known = shown_.identifierOf(id);
    if (!known) {
        if (inFlight_ > 0) {
            shown_.keepEarly(id, [this, id, text] { replied(id, text); });
        }
        return;
    }
    const std::string identifier = *known;
    if (const auto& reply = shown_.find(identifier)->reply) {
        takeReply(identifier, std::string(reply->identifier), text);
    }
}

void NotificationPoster::takeReply(const std::string& identifier, const std::string& action,
                                   const QString& text) {
    closeAtService(identifier);
    respond(identifier, action, text.toStdString());
}

void NotificationPoster::respond(const std::string& identifier, const std::string& action,
                                 std::optional<std::string> text) {
    if (auto* delegate = delegate_.load()) {
        delegate->didReceive({.actionIdentifier = action,
                              .requestIdentifier = longIdentifiers_.identifierOf(identifier),
                              .userText = std::move(text)},
                             [] {});
    }
}

NotificationPoster::Reply NotificationPoster::replyActionOf(const NotificationContent& content) const {
    const auto category = std::find_if(categories_.begin(), categories_.end(), [&](const auto& candidate) {
        return candidate.identifier == content.categoryIdentifier;
    });
    if (category == categories_.end() || category->actions.empty()) {
        return std::nullopt;
    }
    return category->actions.front();
}

} // namespace velloway
