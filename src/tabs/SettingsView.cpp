#include "tabs/SettingsView.h"

#include "features/ClipboardSync.h"
#include "tabs/ContactsManager.h"
#include "tabs/ProductOwner.h"
#include "text/Graphemes.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <utility>
#include <variant>

namespace velloway {

namespace {

constexpr std::string_view portKey = "port";
constexpr std::string_view selectedTabKey = "selectedSettingsTab";
constexpr std::int64_t sentType = 2;

std::int64_t storedOr(const UserDefaults& defaults, std::string_view key, std::int64_t fallback) {
    return defaults.has(key) ? defaults.integer(key) : fallback;
}

/// Leaves the field alone, and its observers undisturbed, when it has this value already.
template <class T> void setIfDifferent(Observable<T>& field, const T& value) {
    if (field.get() != value) {
        field.set(value);
    }
}

Subscription together(std::vector<Subscription> subscriptions) {
    auto kept = std::make_shared<std::vector<Subscription>>(std::move(subscriptions));
    return Subscription([kept] { kept->clear(); });
}

template <class... Fields> Subscription observeAll(const std::function<void()>& changed, Fields&... fields) {
    std::vector<Subscription> subscriptions;
    (subscriptions.push_back(fields.observe([changed](const auto&) { changed(); })), ...);
    return together(std::move(subscriptions));
}

template <class Row> const Row* findRow(const std::vector<Row>& rows, const Uuid& id) {
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.id == id; });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace

std::shared_ptr<SettingsView> SettingsView::make(const Dependencies& dependencies) {
    return std::shared_ptr<SettingsView>(new SettingsView(dependencies));
}

SettingsView::SettingsView(const Dependencies& on)
    : history(on.history),
      port(storedOr(on.userDefaults, portKey, WebSocketServer::defaultPort)),
      launchAtLogin(on.isLaunchAtLoginEnabled()),
      isAccessibilityEnabled(on.accessibility.isTrusted()),
      selectedTab(storedOr(on.userDefaults, selectedTabKey, tabIndex::settings)),
      on_(on),
      lastPort_(port.get()),
      lastLaunchAtLogin_(launchAtLogin.get()),
      lastSims_(history->availableSIMs.get()) {
    followUserDefaults();
    followOwnFields();
    followStore();
    followNotifications();
}

// Every subscription ends with the view, so that the observers may hold it plainly.

void SettingsView::followUserDefaults() {
    cancellables_.push_back(
        on_.userDefaults.observe(portKey, [this](std::int64_t value) { setIfDifferent(port, value); }));
    cancellables_.push_back(on_.userDefaults.observe(
        selectedTabKey, [this](std::int64_t value) { setIfDifferent(selectedTab, value); }));
}

void SettingsView::followOwnFields() {
    // Before all other observers, so that none sees what was made from the log before.
    cancellables_.push_back(phoneSmsLog.observe([this](const auto&) {
        conversations_.reset();
        threadRows_.reset();
    }));
    cancellables_.push_back(phoneCallLog.observe([this](const auto&) {
        callNames_.reset();
        threadRows_.reset();
    }));
    cancellables_.push_back(port.observe([this](std::int64_t value) {
        if (std::exchange(lastPort_, value) == value) {
            return;
        }
        if (storedOr(on_.userDefaults, portKey, WebSocketServer::defaultPort) != value) {
            on_.userDefaults.setInteger(portKey, value);
        }
        serverRestartNeeded.set(true);
    }));
    cancellables_.push_back(selectedTab.observe([this](std::int64_t value) {
        if (storedOr(on_.userDefaults, selectedTabKey, tabIndex::settings) != value) {
            on_.userDefaults.setInteger(selectedTabKey, value);
        }
    }));
    cancellables_.push_back(launchAtLogin.observe([this](bool enabled) {
        if (std::exchange(lastLaunchAtLogin_, enabled) != enabled) {
            on_.setLaunchAtLogin(enabled);
        }
    }));
    cancellables_.push_back(contactQuery.observe([this](const std::string& query) {
        const SearchTextTraits traits = searchTextTraits(query);
        setIfDifferent(looksNumeric, traits.looksNumeric);
        setIfDifferent(showSuggestions, traits.showSuggestions);
    }));
}

void SettingsView::followStore() {
    cancellables_.push_back(history->availableSIMs.observe([this](const std::vector<SimInfo>& sims) {
        if (std::exchange(lastSims_, sims) != sims && !sims.empty()) {
            selectedSimSlot.set(sims.front().slot);
        }
    }));
}

void SettingsView::followNotifications() {
    AppNotificationCenter& center = on_.notifications;
    cancellables_.push_back(center.observe(AppNotification::smsHistoryUpdated, [this](const auto& object) {
        if (const auto* log = std::get_if<std::vector<SmsRecord>>(&object)) {
            phoneSmsLog.set(*log);
        }
    }));
    cancellables_.push_back(center.observe(AppNotification::callHistoryUpdated, [this](const auto& object) {
        if (const auto* log = std::get_if<std::vector<CallRecord>>(&object)) {
            phoneCallLog.set(*log);
        }
    }));
    cancellables_.push_back(center.observe(AppNotification::prepareActiveCall, [this](const auto& object) {
        if (const auto* number = std::get_if<std::string>(&object)) {
            dialpadNumber.set(*number);
        }
    }));
}

// What the window reports

void SettingsView::viewAppears() {
    on_.server.requestSmsHistory();
    on_.server.requestCallHistory();
    refreshAccessibilityStatus();
    refreshNotifStatus();
}

void SettingsView::tabAppears(std::int64_t tab) {
    switch (tab) {
    case tabIndex::sms:
        on_.server.requestSmsHistory();
        on_.server.requestCallHistory();
        break;
    case tabIndex::settings:
        refreshNotifStatus();
        break;
    default:
        break;
    }
}

void SettingsView::applicationDidBecomeActive() {
    refreshAccessibilityStatus();
}

// What the tabs show

Subscription SettingsView::observe(Shown value, std::function<void()> changed) {
    HistoryStore& store = *history;
    switch (value) {
    case Shown::tab:
        return observeAll(changed, selectedTab);
    case Shown::smsList:
        return observeAll(changed, contactQuery, looksNumeric, phoneSmsLog, phoneCallLog, activeRecipient);
    case Shown::smsChat:
        return observeAll(changed, activeRecipient, phoneSmsLog, phoneCallLog, store.availableSIMs);
    case Shown::composer:
        return observeAll(changed, chatText);
    case Shown::dialPad:
        return observeAll(changed, dialpadNumber, store.availableSIMs);
    case Shown::recentCalls:
        return observeAll(changed, phoneCallLog);
    case Shown::notifications:
        return observeAll(changed, store.items, replyingTo, phoneCallLog);
    case Shown::fileTransfers:
        return observeAll(changed, store.fileTransfers);
    case Shown::clipboard:
        return observeAll(changed, store.clipboardHistory);
    case Shown::remote:
        return observeAll(changed, isAccessibilityEnabled);
    case Shown::settings:
        return observeAll(changed, store.connectedRemoteIP, store.connectedWifiName, store.connectedDeviceName,
                          store.batteryLevel, store.isCharging, port, serverRestartNeeded, notifAuthStatus,
                          launchAtLogin);
    }
    return {};
}

SmsList SettingsView::smsList() const {
    return velloway::smsList(conversations(), threadRows(), contactQuery.get(), looksNumeric.get(),
                             activeRecipient.get(), callNames());
}

std::optional<ChatHeader> SettingsView::chatHeader() const {
    if (!activeRecipient.get()) {
        return std::nullopt;
    }
    return velloway::chatHeader(conversations(), *activeRecipient.get(), history->availableSIMs.get(),
                                callNames());
}

std::vector<SmsBubble> SettingsView::smsBubbles() const {
    return velloway::smsBubbles(activeMessages(), on_.host);
}

Composer SettingsView::composer() const {
    return {.canSend = !chatText.get().empty()};
}

DialPad SettingsView::dialPad() const {
    return velloway::dialPad(dialpadNumber.get(), history->availableSIMs.get().size());
}

std::vector<RecentCallRow> SettingsView::recentCallRows() const {
    return velloway::recentCallRows(phoneCallLog.get(), callNames(), on_.host);
}

std::vector<NotificationRow> SettingsView::notificationRows() const {
    return velloway::notificationRows(history->items.get(), replyingTo.get(), callNames(), on_.host);
}

NotificationsFooter SettingsView::notificationsFooter() const {
    return velloway::notificationsFooter(history->items.get().size());
}

std::vector<FileTransferRow> SettingsView::fileTransferRows() const {
    return velloway::fileTransferRows(history->fileTransfers.get(), on_.host);
}

std::vector<ClipboardRow> SettingsView::clipboardRows() const {
    return velloway::clipboardRows(history->clipboardHistory.get(), on_.host);
}

std::string SettingsView::portText() const {
    return velloway::portText(port.get(), on_.host.locale());
}

// Conversations

const std::vector<Conversation>& SettingsView::conversations() const {
    if (!conversations_) {
        conversations_ = velloway::conversations(phoneSmsLog.get());
    }
    return *conversations_;
}

const CallNames& SettingsView::callNames() const {
    if (!callNames_) {
        callNames_.emplace(phoneCallLog.get());
    }
    return *callNames_;
}

const std::vector<SmsThreadRow>& SettingsView::threadRows() const {
    // The same instant reads otherwise on another day, in another place.
    const RelativeDates dates(on_.host);
    if (!threadRows_ || !threadRows_->dates.agreesWith(dates)) {
        threadRows_ = {.dates = dates, .rows = smsThreadRows(conversations(), callNames(), dates)};
    }
    return threadRows_->rows;
}

std::vector<const Conversation*> SettingsView::filteredConversations() const {
    return velloway::filteredConversations(conversations(), contactQuery.get(), callNames());
}

std::vector<const SmsRecord*> SettingsView::activeMessages() const {
    return velloway::activeMessages(conversations(), activeRecipient.get());
}

std::string SettingsView::contactName(const std::string& address,
                                      const std::optional<std::string>& providedName) const {
    return callNames().contactName(address, providedName);
}

std::string SettingsView::avatarInitials(const std::string& address) const {
    return velloway::avatarInitials(address, callNames());
}

std::string SettingsView::formatDate(double milliseconds) const {
    return velloway::formatDate(milliseconds, on_.host);
}

std::string SettingsView::formatRelativeDate(double milliseconds) const {
    return RelativeDates(on_.host).text(milliseconds);
}

// SMS tab

void SettingsView::refreshSmsHistory() {
    on_.server.requestSmsHistory();
}

void SettingsView::clearSearch() {
    contactQuery.set("");
}

void SettingsView::startNewMessage() {
    activeRecipient.set(contactQuery.get());
    contactQuery.set("");
}

void SettingsView::openConversation(const std::string& displayAddress) {
    activeRecipient.set(displayAddress);
}

void SettingsView::sendChatMessage() {
    if (!activeRecipient.get() || chatText.get().empty()) {
        return;
    }
    const std::string recipient = *activeRecipient.get();
    on_.server.sendSms(ContactsManager::digitsOnly(recipient), chatText.get(), selectedSimSlot.get());
    phoneSmsLog.modify([&](std::vector<SmsRecord>& log) {
        log.push_back({.address = recipient,
                       .name = std::nullopt,
                       .body = chatText.get(),
                       .date = secondsSince1970(on_.host.now()) * 1000,
                       .type = sentType});
    });
    chatText.set("");
}

// Calls tab

void SettingsView::pressDialButton(std::size_t index) {
    dialpadNumber.modify([&](std::string& number) { number.append(dialButtons.at(index).digit); });
}

void SettingsView::deleteLastDigit() {
    dialpadNumber.set(std::string(withoutLastGrapheme(dialpadNumber.get())));
}

void SettingsView::callBack(const std::string& number) {
    dialpadNumber.set(number);
    startCall();
}

void SettingsView::startCall() {
    const std::string number = dialpadNumber.get();
    if (number.empty()) {
        return;
    }
    on_.server.makeCall(number, selectedSimSlot.get());
    on_.notifications.post(
        AppNotification::prepareActiveCall,
        std::map<std::string, std::string>{{"number", number}, {"name", contactName(number, std::nullopt)}});
}

void SettingsView::endCall() {
    on_.server.hangupCall();
    history->incomingCallInfo.set(std::nullopt);
    isSpeakerOn.set(false);
    isMuted.set(false);
}

KeyPressResult SettingsView::pressKey(const KeyPress& press) {
    const DialerKeyHandler handler{
        .get = [this] { return dialpadNumber.get(); },
        .set = [this](std::string number) { dialpadNumber.set(std::move(number)); },
        .isCallActive = false,
        .onReturn = [this] { startCall(); },
    };
    return handler.handle(press);
}

// Notifications tab

void SettingsView::openReply(const Uuid& id) {
    replyingTo.set(id);
}

void SettingsView::sendReply(const Uuid& id) {
    on_.server.sendReply(id.text(), replyText.get());
    replyingTo.set(std::nullopt);
    replyText.set("");
}

void SettingsView::cancelReply() {
    replyingTo.set(std::nullopt);
}

void SettingsView::clearNotifications() {
    history->clear();
}

// File Drop and Clipboard tabs

void SettingsView::selectFileAndSend() {
    on_.windows.beginOpenPanel({.allowsMultipleSelection = true, .canChooseDirectories = false},
                               [weak = weak_from_this()](const auto& urls) {
                                   const auto self = weak.lock();
                                   if (!self || !urls) {
                                       return;
                                   }
                                   for (const std::filesystem::path& url : *urls) {
                                       self->on_.server.sendFile(url);
                                   }
                               });
}

void SettingsView::revealFile(const Uuid& transfer) {
    const FileTransferRecord* record = findRow(history->fileTransfers.get(), transfer);
    if (record && record->url) {
        on_.workspace.activateFileViewerSelecting(*record->url);
    }
}

void SettingsView::clearFileTransfers() {
    history->clearFileTransfers();
}

void SettingsView::sendCurrentClipboard() {
    if (const auto text = textToSend(on_.pasteboard)) {
        on_.server.sendClipboard(*text);
    }
}

void SettingsView::copyToClipboard(const Uuid& record) {
    if (const ClipboardRecord* row = findRow(history->clipboardHistory.get(), record)) {
        on_.pasteboard.clearContents();
        on_.pasteboard.setString(row->text);
    }
}

void SettingsView::clearClipboard() {
    history->clearClipboard();
}

// Remote tab

void SettingsView::pressRemoteButton(std::size_t index) {
    const RemoteButton& button = remoteButtons.at(index);
    switch (button.operation) {
    case RemoteOperation::sendMediaCommand:
        on_.server.sendMediaCommand(button.command);
        break;
    case RemoteOperation::sendNavCommand:
        on_.server.sendNavCommand(button.command);
        break;
    }
}

bool SettingsView::pressRemoteShortcut(const KeyEquivalent& pressed) {
    const std::size_t index = remoteButtonFor(pressed);
    if (index == remoteButtons.size()) {
        return false;
    }
    pressRemoteButton(index);
    return true;
}

void SettingsView::openAccessibilitySettings() {
    on_.workspace.openSettings(SettingsPane::accessibility);
}

void SettingsView::refreshAccessibilityStatus() {
    isAccessibilityEnabled.set(on_.accessibility.isTrusted());
}

// Settings and Info tabs

void SettingsView::copyLocalIP() {
    on_.pasteboard.clearContents();
    on_.pasteboard.setString(localIP());
}

void SettingsView::commitPort(const std::string& text) {
    if (const auto number = parsePort(text, on_.host.locale())) {
        port.set(*number);
    }
}

void SettingsView::restartServer() {
    on_.server.start();
    serverRestartNeeded.set(false);
}

void SettingsView::requestNotificationPermission() {
    constexpr unsigned options =
        authorizationOptions::alert | authorizationOptions::sound | authorizationOptions::badge;
    on_.notificationCenter.requestAuthorization(
        options, [&main = on_.main, weak = weak_from_this()](bool, const auto&) {
            hop(main, weak, [](SettingsView& self) { self.refreshNotifStatus(); });
        });
}

void SettingsView::openNotificationSettings() {
    on_.workspace.openSettings(SettingsPane::notifications);
}

void SettingsView::refreshNotifStatus() {
    on_.notificationCenter.getAuthorizationStatus(
        [&main = on_.main, weak = weak_from_this()](AuthorizationStatus status) {
            hop(main, weak, [status](SettingsView& self) { self.notifAuthStatus.set(status); });
        });
}

void SettingsView::openProfile() {
    on_.workspace.open(productOwner::profileLink);
}

} // namespace velloway
