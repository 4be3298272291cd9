#pragma once

#include "hosts/linux/notifications/BannerFallback.h"
#include "hosts/linux/notifications/DeliveryQueue.h"
#include "hosts/linux/notifications/LongIdentifiers.h"
#include "hosts/linux/notifications/NotificationService.h"
#include "hosts/linux/notifications/NotificationText.h"
#include "hosts/linux/notifications/ShownNotifications.h"
#include "platform/DispatchQueue.h"
#include "platform/UserNotificationCenter.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// Takes each request from hand-over to screen: asks the delegate, then the notification service, and shows our
/// own banner where the service cannot do what is asked. Main thread, except `setDelegate`.
///
/// What the service leaves unanswered for too long goes to our own banner, which then stands for it: should the
/// service show it after all, it is closed there. Where no banner has room, it stays with the service.
///
/// While there is no service, what finds no room on our banners waits for a banner to go or for a service to
/// come. To a service that comes go the banners that nobody is using, too.
///
/// A request that can be answered goes to our own banner when the service has no actions at all, because on
/// such a service nobody could answer it.
class NotificationPoster : public std::enable_shared_from_this<NotificationPoster> {
public:
    using Completion = DeliveryQueue::Completion;

    explicit NotificationPoster(DispatchQueue& main);

    void setDelegate(UserNotificationCenterDelegate* delegate) { delegate_ = delegate; }
    void setCategories(const std::vector<NotificationCategory>& categories) { categories_ = categories; }
    /// `name` stands for the identifier in what is added and removed; the delegate is told the identifier.
    void keepIdentifier(const std::string& name, ImmutableText identifier);
    void add(NotificationRequest request, Completion completion);
    void removeDelivered(const std::string& identifier);
    void removePending(const std::string& identifier) { deliveries_.removePending(identifier); }

private:
    using Delivery = DeliveryQueue::Delivery;
    using Reply = std::optional<TextInputNotificationAction>;

    void askDelegate(Delivery& delivery);
    void presentationDecided(const std::string& identifier, std::uint64_t turn, unsigned options);

    void sendReady();
    void askCapabilities();
    void showReadyOnBanners();
    void send(Delivery& delivery);
    void answered(const std::string& identifier, std::uint64_t turn, const NotificationService::Answer& answer);
    void act(Delivery& delivery, const NotificationService::Answer& answer);
    void overdue(const std::string& identifier, std::uint64_t turn);
    void tryAgain(Delivery& delivery);
    void pauseSending();
    void shownByService(Delivery& delivery, uint id);
    void showOnBanner(Delivery& delivery);
    bool putOnBanner(Delivery& delivery);
    void bannerGone(const std::string& identifier);
    void showMoreLater();
    void endMove(const std::string& identifier);
    void moveBannersToService();
    void closeAtService(const std::string& identifier);
    void serviceChanged();
    void serviceBecameAvailable();

    void closed(uint id, uint reason);
    void actionInvoked(uint id, const QString& key);
    void replied(uint id, const QString& text);
    void takeReply(const std::string& identifier, const std::string& action, const QString& text);
    void respond(const std::string& identifier, const std::string& action,
                 std::optional<std::string> text = std::nullopt);

    Reply replyActionOf(const NotificationContent& content) const;

    DispatchQueue& main_;
    std::atomic<UserNotificationCenterDelegate*> delegate_{nullptr};
    std::vector<NotificationCategory> categories_;
    DeliveryQueue deliveries_;
    ShownNotifications shown_;
    BannerFallback banners_;
    NotificationService service_;
    LongIdentifiers longIdentifiers_;
    std::optional<NotificationCapabilities> capabilities_;
    bool isAskingCapabilities_ = false;
    std::size_t inFlight_ = 0;
    bool isPaused_ = false;
};

} // namespace velloway
