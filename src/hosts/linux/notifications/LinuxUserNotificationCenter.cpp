#include "hosts/linux/notifications/LinuxUserNotificationCenter.h"

#include "hosts/linux/notifications/LongIdentifiers.h"
#include "hosts/linux/notifications/NotificationPoster.h"
#include "hosts/linux/notifications/NotificationText.h"

namespace velloway {

namespace {

/// Texts of any size come from the phone, and what is on screen is kept for as long as it stands there.
NotificationRequest displayedPart(const NotificationRequest& request) {
    NotificationRequest part{LongIdentifiers::nameOf(request.identifier), request.content};
    if (part.content.body.string().size() > readBytes(bodyLimit)) {
        part.content.body = part.content.body.string().substr(0, readBytes(bodyLimit));
    }
    return part;
}

} // namespace

LinuxUserNotificationCenter::LinuxUserNotificationCenter(DispatchQueue& main)
    : main_(main), poster_(std::make_shared<NotificationPoster>(main)) {}

LinuxUserNotificationCenter::~LinuxUserNotificationCenter() = default;

void LinuxUserNotificationCenter::setDelegate(UserNotificationCenterDelegate* delegate) {
    // At once, so that a delegate that takes itself out on the main thread is not called afterwards.
    poster_->setDelegate(delegate);
}

void LinuxUserNotificationCenter::add(const NotificationRequest& request,
                                      std::function<void(const std::optional<std::string>& error)> completion) {
    const bool isLong = LongIdentifiers::isLong(request.identifier);
    hop(main_, std::weak_ptr(poster_),
        [request = displayedPart(request), completion = std::move(completion),
         identifier =
             isLong ? std::optional<ImmutableText>(request.identifier) : std::nullopt](auto& poster) mutable {
            if (identifier) {
                poster.keepIdentifier(request.identifier, *identifier);
            }
            poster.add(std::move(request), std::move(completion));
        });
}

void LinuxUserNotificationCenter::removeDelivered(const std::vector<std::string>& identifiers) {
    hop(main_, std::weak_ptr(poster_), [identifiers](auto& poster) {
        for (const auto& identifier : identifiers) {
            poster.removeDelivered(LongIdentifiers::nameOf(identifier));
        }
    });
}

void LinuxUserNotificationCenter::removePending(const std::vector<std::string>& identifiers) {
    hop(main_, std::weak_ptr(poster_), [identifiers](auto& poster) {
        for (const auto& identifier : identifiers) {
            poster.removePending(LongIdentifiers::nameOf(identifier));
        }
    });
}

void LinuxUserNotificationCenter::getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) {
    main_.async([completion = std::move(completion)] { completion(AuthorizationStatus::authorized); });
}

void LinuxUserNotificationCenter::requestAuthorization(
    unsigned, std::function<void(bool granted, const std::optional<std::string>& error)> completion) {
    main_.async([completion = std::move(completion)] { completion(true, std::nullopt); });
}

void LinuxUserNotificationCenter::setCategories(const std::vector<NotificationCategory>& categories) {
    hop(main_, std::weak_ptr(poster_), [categories](auto& poster) { poster.setCategories(categories); });
}

} // namespace velloway
