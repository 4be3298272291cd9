#pragma once

#include "hosts/linux/notifications/NotificationPanels.h"
#include "hosts/linux/notifications/NotificationService.h"
#include "hosts/linux/notifications/NotificationText.h"
#include "platform/DispatchQueue.h"
#include "platform/UserNotificationCenter.h"

#include <atomic>
#include <deque>
#include <map>
#include <optional>
#include <unordered_map>

namespace velloway {

/// Takes each request from hand-over to screen: asks the delegate, then the notification service, and puts up
/// our own banner where the service cannot do what is asked. Main thread, except `setDelegate`.
///
/// Per identifier one request is under way and at most one waits: a later one takes the place of the one that
/// waits, as it would on screen. So a replacement never overtakes the answer that tells what to replace.
///
/// What the service leaves unanswered for too long goes to our own banner, which then stands for it: should the
/// service show it after all, it is closed there. Where no banner has room, it stays with the service.
///
/// A request that can be answered goes to our own banner when the service has no actions at all, because on
/// such a service nobody could answer it.
class NotificationPoster : public std::enable_shared_from_this<NotificationPoster> {
public:
    using Completion = std::function<void(const std::optional<std::string>& error)>;

    explicit NotificationPoster(DispatchQueue& main);

    void setDelegate(UserNotificationCenterDelegate* delegate) { delegate_ = delegate; }
    void setCategories(const std::vector<NotificationCategory>& categories) { categories_ = categories; }
    void add(NotificationRequest request, Completion completion);
    void removeDelivered(const std::string& identifier);
    void removePending(const std::string& identifier);

private:
    struct Job {
        NotificationRequest request;
        Completion completion;
        unsigned options = 0;
        int attempts = 0;
    };

    enum class Stage { idle, askingDelegate, ready, sent };

    struct Entry {
        Stage stage = Stage::idle;
        /// Tells a late answer for an earlier job from one for this.
        std::uint64_t turn = 0;
        std::optional<Job> current;
        std::optional<Job> next;

        /// What is on screen: by the service when not 0, or on our own banner.
        uint serviceId = 0;
        bool isOnBanner = false;
        NotificationContent content;
        std::optional<TextInputNotificationAction> reply;
        bool wasAnswered = false;
        bool closeWhenShown = false;

        bool isIdle() const { return stage == Stage::idle && serviceId == 0 && !isOnBanner; }
    };
    using Entries = std::map<std::string, Entry>;

    struct EarlySignal {
        uint id;
        std::function<void()> deliver;
    };

    void start(const std::string& identifier, Entry& entry, Job job);
    void presentationDecided(const std::string& identifier, std::uint64_t turn, unsigned options);
    void sendReady();
    void askCapabilities();
    void send(const std::string& identifier, Entry& entry);
    NotificationService::Notification wireForm(const Entry& entry) const;
    bool isSent(const std::string& identifier, std::uint64_t turn) const;
    void answered(const std::string& identifier, const NotificationService::Answer& answer);
    void overdue(const std::string& identifier);
    void tryAgain(const std::string& identifier, Entry& entry);
    void pauseSending();
    void shownByService(const std::string& identifier, Entry& entry, uint id);
    void showOnBanner(const std::string& identifier, Entry& entry);
    bool putOnBanner(const std::string& identifier, Entry& entry);
    void finish(const std::string& identifier, const std::optional<std::string>& error);
    void forgetIfIdle(const std::string& identifier);
    void forgetOldestShown();

    void forgetService();
    void closeAtService(Entry& entry);
    Entry* entryShownAs(uint id, std::function<void()> deliverLater);
    void deliverEarly(uint id);
    void onClosed(uint id, uint reason);
    void onActionInvoked(uint id, const QString& key);
    void onReplied(uint id, const QString& text);
    void openReplyPanel(const std::string& identifier, const Entry& entry);
    void respond(const std::string& identifier, const std::string& action,
                 std::optional<std::string> text = std::nullopt);
    void takeReply(const std::string& identifier, const std::string& action, const QString& text);

    std::optional<TextInputNotificationAction> replyActionOf(const NotificationContent& content) const;

    DispatchQueue& main_;
    std::atomic<UserNotificationCenterDelegate*> delegate_{nullptr};
    std::vector<NotificationCategory> categories_;
    NotificationService service_;
    std::optional<NotificationCapabilities> capabilities_;
    bool isAskingCapabilities_ = false;

    Entries entries_;
    std::unordered_map<uint, std::string> identifiers_;
    /// Identifier and turn of the requests that wait for their call to the service, in the order of the screen.
    std::deque<std::pair<std::string, std::uint64_t>> ready_;
    std::uint64_t turns_ = 0;
    std::size_t underWay_ = 0;
    std::size_t inFlight_ = 0;
    bool isPaused_ = false;
    /// A service may report on a notification before it has told its id.
    std::vector<EarlySignal> early_;
    NotificationPanels panels_;
};

} // namespace velloway
