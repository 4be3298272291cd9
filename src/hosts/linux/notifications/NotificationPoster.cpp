#include "hosts/linux/notifications/NotificationPoster.h"

#include "hosts/linux/notifications/LinuxUserNotificationCenter.h"

#include <algorithm>
#include <utility>

namespace velloway {

namespace {

/// Requests that wait, across all identifiers; more are refused with an error.
constexpr std::size_t maxUnderWay = 2000;
/// Calls that the service has not answered yet: enough to keep it busy, few enough not to swamp it.
constexpr std::size_t maxInFlight = 16;
/// Notifications that can still be replaced, closed and answered; older ones only stay on screen.
constexpr std::size_t maxRemembered = 2000;
constexpr std::size_t maxEarlySignals = 256;
constexpr int maxAttempts = 3;
constexpr auto pauseWhenTooMany = std::chrono::seconds(1);
constexpr unsigned withoutDelegate = presentationOptions::banner | presentationOptions::sound;

constexpr auto inlineReplyKey = "inline-reply";
constexpr auto tooManyWaiting = "Too many notifications are waiting to be shown.";
constexpr auto nowhereToShow = "There is no notification service and no display to show the notification on.";

uchar normalUrgency() {
    return 1;
}

ReplyField replyFieldOf(const TextInputNotificationAction& action) {
    return {QString::fromStdString(action.textInputPlaceholder),
            QString::fromStdString(action.textInputButtonTitle)};
}

} // namespace

NotificationPoster::NotificationPoster(DispatchQueue& main)
    : main_(main),
      service_(main, {.closed = [this](uint id, uint reason) { onClosed(id, reason); },
                      .actionInvoked = [this](uint id, const QString& key) { onActionInvoked(id, key); },
                      .replied = [this](uint id, const QString& text) { onReplied(id, text); },
                      .ownerChanged = [this] { forgetService(); }}) {}

// Hand-over.

void NotificationPoster::add(NotificationRequest request, Completion completion) {
    const std::string identifier = request.identifier;
    Entry& entry = entries_[identifier];
    Job job{.request = std::move(request), .completion = std::move(completion)};
    if (entry.stage == Stage::idle) {
        if (underWay_ >= maxUnderWay) {
            forgetIfIdle(identifier);
            if (job.completion) {
                job.completion(tooManyWaiting);
            }
            return;
        }
        return start(identifier, entry, std::move(job));
    }
    auto superseded = std::exchange(entry.next, std::move(job));
    if (superseded && superseded->completion) {
        superseded->completion(std::nullopt);
    }
}

void NotificationPoster::start(const std::string& identifier, Entry& entry, Job job) {
    entry.stage = Stage::askingDelegate;
    entry.turn = ++turns_;
    entry.current = std::move(job);
    ++underWay_;
    auto* delegate = delegate_.load();
    if (!delegate) {
        return presentationDecided(identifier, entry.turn, withoutDelegate);
    }
    auto decided = [weak = weak_from_this(), &main = main_, identifier, turn = entry.turn](unsigned options) {
        hop(main, weak, [=](auto& self) { self.presentationDecided(identifier, turn, options); });
    };
    const NotificationRequest asked = entry.current->request;
    delegate->willPresent(asked, std::move(decided));
}

void NotificationPoster::presentationDecided(const std::string& identifier, std::uint64_t turn,
                                             unsigned options) {
    const auto found = entries_.find(identifier);
    if (found == entries_.end() || found->second.turn != turn || found->second.stage != Stage::askingDelegate) {
        return;
    }
    if (!(options & presentationOptions::banner)) {
        return finish(identifier, std::nullopt);
    }
    found->second.current->options = options;
    found->second.stage = Stage::ready;
    ready_.emplace_back(identifier, turn);
    sendReady();
}

void NotificationPoster::removePending(const std::string& identifier) {
    const auto found = entries_.find(identifier);
    if (found == entries_.end()) {
        return;
    }
    if (auto dropped = std::exchange(found->second.next, std::nullopt); dropped && dropped->completion) {
        dropped->completion(std::nullopt);
    }
    if (found->second.stage == Stage::askingDelegate || found->second.stage == Stage::ready) {
        finish(identifier, std::nullopt);
    }
}

void NotificationPoster::removeDelivered(const std::string& identifier) {
    const auto found = entries_.find(identifier);
    if (found == entries_.end()) {
        return;
    }
    Entry& entry = found->second;
    entry.closeWhenShown = entry.stage == Stage::sent;
    closeAtService(entry);
    if (std::exchange(entry.isOnBanner, false)) {
        panels_.closeBanner(identifier);
    }
    forgetIfIdle(identifier);
}

// To the service.

void NotificationPoster::sendReady() {
    while (!ready_.empty() && !isPaused_ && inFlight_ < maxInFlight) {
        if (!capabilities_) {
            return askCapabilities();
        }
        const auto [identifier, turn] = std::move(ready_.front());
        ready_.pop_front();
        const auto found = entries_.find(identifier);
        if (found != entries_.end() && found->second.turn == turn && found->second.stage == Stage::ready) {
            send(identifier, found->second);
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
            return sendReady();
        }
        for (const auto& [identifier, turn] : std::exchange(ready_, {})) {
            const auto found = entries_.find(identifier);
            if (found != entries_.end() && found->second.turn == turn && found->second.stage == Stage::ready) {
                showOnBanner(identifier, found->second);
            }
        }
    });
}

void NotificationPoster::send(const std::string& identifier, Entry& entry) {
    entry.content = entry.current->request.content;
    entry.reply = replyActionOf(entry.content);
    if (entry.reply && !capabilities_->actions && !capabilities_->inlineReply &&
        NotificationPanels::canShow()) {
        return showOnBanner(identifier, entry);
    }
    entry.stage = Stage::sent;
    ++inFlight_;
    service_.notify(
        wireForm(entry),
        [this, identifier, turn = entry.turn](const NotificationService::Answer& answer) {
            if (isSent(identifier, turn)) {
                --inFlight_;
                answered(identifier, answer);
                if (inFlight_ == 0) {
                    early_.clear();
                }
                sendReady();
            } else if (answer.outcome == NotificationService::Outcome::shown) {
                service_.close(answer.id);
            }
        },
        [this, identifier] { overdue(identifier); });
}

bool NotificationPoster::isSent(const std::string& identifier, std::uint64_t turn) const {
    const auto found = entries_.find(identifier);
    return found != entries_.end() && found->second.turn == turn && found->second.stage == Stage::sent;
}

void NotificationPoster::overdue(const std::string& identifier) {
    Entry& entry = entries_.at(identifier);
    if (entry.closeWhenShown || putOnBanner(identifier, entry)) {
        --inFlight_;
        finish(identifier, std::nullopt);
    }
    capabilities_.reset();
    sendReady();
}

NotificationService::Notification NotificationPoster::wireForm(const Entry& entry) const {
    const auto text = notificationText(entry.content, *capabilities_);
    NotificationService::Notification wire{
        .replacesId = entry.serviceId, .summary = text.summary, .body = text.body};

    // Without an action of this name some desktops start the application when the notification is clicked.
    if (capabilities_->actions) {
        wire.actions << LinuxUserNotificationCenter::defaultAction << QString();
    }
    if (entry.reply && capabilities_->inlineReply) {
        wire.actions << inlineReplyKey << QString::fromStdString(entry.reply->title);
        wire.hints["x-kde-reply-placeholder-text"] = QString::fromStdString(entry.reply->textInputPlaceholder);
        wire.hints["x-kde-reply-submit-button-text"] =
            QString::fromStdString(entry.reply->textInputButtonTitle);
    } else if (entry.reply && capabilities_->actions) {
        wire.actions << QString::fromStdString(entry.reply->identifier)
                     << QString::fromStdString(entry.reply->title);
    }

    wire.hints["desktop-entry"] = "org.velloway.Velloway";
    wire.hints["urgency"] = QVariant::fromValue(normalUrgency());
    if (entry.reply) {
        wire.hints["category"] = "im.received";
    }
    if (entry.content.hasDefaultSound && (entry.current->options & presentationOptions::sound)) {
        wire.hints["sound-name"] = "message-new-instant";
    } else {
        wire.hints["suppress-sound"] = true;
    }
    return wire;
}

void NotificationPoster::answered(const std::string& identifier, const NotificationService::Answer& answer) {
    using Outcome = NotificationService::Outcome;
    Entry& entry = entries_.at(identifier);
    switch (answer.outcome) {
    case Outcome::shown:
        return shownByService(identifier, entry, answer.id);
    case Outcome::refused:
        return finish(identifier, answer.errorText.toStdString());
    case Outcome::unavailable:
        capabilities_.reset();
        return showOnBanner(identifier, entry);
    case Outcome::tooMany:
        pauseSending();
        return tryAgain(identifier, entry);
    case Outcome::ownerGone:
        return tryAgain(identifier, entry);
    }
}

void NotificationPoster::tryAgain(const std::string& identifier, Entry& entry) {
    if (entry.closeWhenShown) {
        return finish(identifier, std::nullopt);
    }
    if (++entry.current->attempts >= maxAttempts) {
        return showOnBanner(identifier, entry);
    }
    entry.stage = Stage::ready;
    const auto later = std::find_if(ready_.begin(), ready_.end(),
                                    [&](const auto& waiting) { return waiting.second > entry.turn; });
    ready_.emplace(later, identifier, entry.turn);
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

void NotificationPoster::shownByService(const std::string& identifier, Entry& entry, uint id) {
    if (entry.serviceId != id) {
        closeAtService(entry);
    }
    if (std::exchange(entry.isOnBanner, false)) {
        panels_.closeBanner(identifier);
    }
    entry.serviceId = id;
    entry.wasAnswered = false;
    identifiers_[id] = identifier;
    if (std::exchange(entry.closeWhenShown, false)) {
        closeAtService(entry);
    }
    if (identifiers_.size() > maxRemembered) {
        forgetOldestShown();
    }
    finish(identifier, std::nullopt);
    deliverEarly(id);
}

// To our own banner.

void NotificationPoster::showOnBanner(const std::string& identifier, Entry& entry) {
    if (std::exchange(entry.closeWhenShown, false)) {
        return finish(identifier, std::nullopt);
    }
    if (!NotificationPanels::canShow()) {
        return finish(identifier, nowhereToShow);
    }
    finish(identifier,
           putOnBanner(identifier, entry) ? std::nullopt : std::optional<std::string>(tooManyWaiting));
}

bool NotificationPoster::putOnBanner(const std::string& identifier, Entry& entry) {
    if (!NotificationPanels::canShow()) {
        return false;
    }
    entry.content = entry.current->request.content;
    entry.reply = replyActionOf(entry.content);
    NotificationBanner::Content content{.title = displayableText(entry.content.title, titleLimit),
                                        .subtitle =
                                            displayableText(entry.content.subtitle.value_or(""), titleLimit),
                                        .body = displayableText(entry.content.body, bodyLimit)};
    NotificationPanels::BannerEvents events;
    if (entry.reply) {
        content.reply = replyFieldOf(*entry.reply);
        events.replied = [this, identifier, action = entry.reply->identifier](const QString& text) {
            takeReply(identifier, action, text);
        };
    }
    events.clicked = [this, identifier] { respond(identifier, LinuxUserNotificationCenter::defaultAction); };
    events.dismissed = [this, identifier] { respond(identifier, LinuxUserNotificationCenter::dismissAction); };
    events.gone = [this, identifier] {
        if (const auto found = entries_.find(identifier); found != entries_.end()) {
            found->second.isOnBanner = false;
            forgetIfIdle(identifier);
        }
    };
    if (!panels_.showBanner(identifier, content, std::move(events))) {
        return false;
    }
    closeAtService(entry);
    entry.isOnBanner = true;
    return true;
}

// Afterwards.

void NotificationPoster::finish(const std::string& identifier, const std::optional<std::string>& error) {
    Entry& entry = entries_.at(identifier);
    const auto job = std::exchange(entry.current, std::nullopt);
    entry.stage = Stage::idle;
    entry.closeWhenShown = false;
    --underWay_;
    if (auto next = std::exchange(entry.next, std::nullopt)) {
        start(identifier, entry, std::move(*next));
    } else {
        forgetIfIdle(identifier);
    }
    if (job->completion) {
        job->completion(error);
    }
}

void NotificationPoster::forgetIfIdle(const std::string& identifier) {
    const auto found = entries_.find(identifier);
    if (found != entries_.end() && found->second.isIdle()) {
        entries_.erase(found);
    }
}

void NotificationPoster::forgetOldestShown() {
    const auto oldest =
        std::min_element(identifiers_.begin(), identifiers_.end(), [&](const auto& a, const auto& b) {
            return entries_.at(a.second).turn < entries_.at(b.second).turn;
        });
    const std::string identifier = oldest->second;
    entries_.at(identifier).serviceId = 0;
    identifiers_.erase(oldest);
    forgetIfIdle(identifier);
}

void NotificationPoster::forgetService() {
    capabilities_.reset();
    early_.clear();
    for (const auto& [id, identifier] : std::exchange(identifiers_, {})) {
        entries_.at(identifier).serviceId = 0;
        forgetIfIdle(identifier);
    }
}

void NotificationPoster::closeAtService(Entry& entry) {
    if (const uint id = std::exchange(entry.serviceId, 0)) {
        identifiers_.erase(id);
        service_.close(id);
    }
}

// What the user does.

NotificationPoster::Entry* NotificationPoster::entryShownAs(uint id, std::function<void()> deliverLater) {
    if (const auto found = identifiers_.find(id); found != identifiers_.end()) {
        return &entries_.at(found->second);
    }
    if (inFlight_ > 0 && early_.size() < maxEarlySignals) {
        early_.push_back({id, std::move(deliverLater)});
    }
    return nullptr;
}

void NotificationPoster::deliverEarly(uint id) {
    std::vector<EarlySignal> due;
    std::erase_if(early_, [&](EarlySignal& signal) {
        return signal.id == id && (due.push_back(std::move(signal)), true);
    });
    for (const EarlySignal& signal : due) {
        signal.deliver();
    }
}

void NotificationPoster::onClosed(uint id, uint reason) {
    Entry* entry = entryShownAs(id, [this, id, reason] { onClosed(id, reason); });
    if (!entry) {
        return;
    }
    const std::string identifier = identifiers_.at(id);
    const bool wasDismissed = reason == NotificationService::dismissedByUser && !entry->wasAnswered;
    identifiers_.erase(id);
    entry->serviceId = 0;
    forgetIfIdle(identifier);
    if (wasDismissed) {
        respond(identifier, LinuxUserNotificationCenter::dismissAction);
    }
}

void NotificationPoster::onActionInvoked(uint id, const QString& key) {
    Entry* entry = entryShownAs(id, [this, id, key] { onActionInvoked(id, key); });
    // A service that takes the reply itself sends the text in a signal of its own.
    if (!entry || key == inlineReplyKey) {
        return;
    }
    entry->wasAnswered = true;
    const std::string identifier = identifiers_.at(id);
    if (entry->reply && key.toStdString() == entry->reply->identifier) {
        openReplyPanel(identifier, *entry);
    } else {
        respond(identifier, key.toStdString());
    }
}

void NotificationPoster::onReplied(uint id, const QString& text) {
    Entry* entry = entryShownAs(id, [this, id, text] { onReplied(id, text); });
    if (entry && entry->reply) {
        const std::string identifier = identifiers_.at(id);
        const std::string action = entry->reply->identifier;
        takeReply(identifier, action, text);
    }
}

void NotificationPoster::openReplyPanel(const std::string& identifier, const Entry& entry) {
    const bool hasSender = entry.content.subtitle && !entry.content.subtitle->empty();
    const ReplyPanel::Prompt prompt{
        .title = displayableText(hasSender ? *entry.content.subtitle : entry.content.title, titleLimit),
        .text = displayableText(entry.content.body, bodyLimit),
        .field = replyFieldOf(*entry.reply)};
    panels_.openReply(identifier, prompt,
                      [this, identifier, action = entry.reply->identifier](const QString& text) {
                          takeReply(identifier, action, text);
                      });
}

void NotificationPoster::takeReply(const std::string& identifier, const std::string& action,
                                   const QString& text) {
    if (const auto found = entries_.find(identifier); found != entries_.end()) {
        found->second.wasAnswered = true;
        closeAtService(found->second);
        forgetIfIdle(identifier);
    }
    respond(identifier, action, text.toStdString());
}

void NotificationPoster::respond(const std::string& identifier, const std::string& action,
                                 std::optional<std::string> text) {
    if (auto* delegate = delegate_.load()) {
        delegate->didReceive(
            {.actionIdentifier = action, .requestIdentifier = identifier, .userText = std::move(text)}, [] {});
    }
}

std::optional<TextInputNotificationAction>
NotificationPoster::replyActionOf(const NotificationContent& content) const {
    const auto category = std::find_if(categories_.begin(), categories_.end(), [&](const auto& candidate) {
        return candidate.identifier == content.categoryIdentifier;
    });
    if (category == categories_.end() || category->actions.empty()) {
        return std::nullopt;
    }
    return category->actions.front();
}

} // namespace velloway
