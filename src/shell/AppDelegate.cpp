#include "shell/AppDelegate.h"

#include "features/ClipboardSync.h"
#include "shell/PhoneLink.h"
#include "shell/StatusMenu.h"
#include "state/Uuid.h"
#include "tabs/TabIndex.h"

#include <chrono>
#include <utility>

namespace velloway {

namespace {

constexpr std::string_view selectedTabKey = "selectedSettingsTab";
constexpr const char* replyCategory = "REPLY_CATEGORY";
constexpr const char* replyAction = "REPLY_ACTION";
constexpr auto alertPolicyDelay = std::chrono::milliseconds(100);

std::shared_ptr<AppDelegate>& sharedInstance() {
    static std::shared_ptr<AppDelegate> instance;
    return instance;
}

void perform(MenuCommand command, AppDelegate& delegate) {
    switch (command) {
    case MenuCommand::call:
        return delegate.onMenuCall();
    case MenuCommand::sms:
        return delegate.onMenuSms();
    case MenuCommand::fileDrop:
        return delegate.onMenuFileDrop();
    case MenuCommand::history:
        return delegate.onMenuHistory();
    case MenuCommand::remote:
        return delegate.onMenuRemote();
    case MenuCommand::sendClipboard:
        return delegate.onMenuSendClipboard();
    case MenuCommand::clipboardHistory:
        return delegate.onMenuClipboardHistory();
    case MenuCommand::settings:
        return delegate.onMenuSettings();
    case MenuCommand::info:
        return delegate.onMenuInfo();
    case MenuCommand::none:
    case MenuCommand::separator:
    case MenuCommand::quit:
        return;
    }
}

void fillDialPad(SettingsView& view, const PhoneLink& link) {
    view.calls.dialpadNumber.set(link.number);
}

void fillComposer(SettingsView& view, const PhoneLink& link) {
    view.sms.openConversation(link.number);
    if (!link.body.empty()) {
        view.sms.chatText.set(link.body);
    }
}

} // namespace

std::shared_ptr<AppDelegate> AppDelegate::make(const Dependencies& dependencies) {
    return std::shared_ptr<AppDelegate>(new AppDelegate(dependencies));
}

AppDelegate& AppDelegate::shared() {
    return *sharedInstance();
}

void AppDelegate::setShared(std::shared_ptr<AppDelegate> delegate) {
    sharedInstance() = std::move(delegate);
}

AppDelegate::AppDelegate(const Dependencies& dependencies)
    : on_(dependencies),
      callWindows_(CallWindows::make({.main = on_.main,
                                      .historyStore = on_.historyStore,
                                      .notifications = on_.notifications,
                                      .server = on_.server,
                                      .windows = on_.windows,
                                      .log = on_.log})) {}

AppDelegate::~AppDelegate() = default;

// Launch

void AppDelegate::applicationDidFinishLaunching() {
    on_.notificationCenter.setDelegate(this);
    requestNotificationPermission();
    registerNotificationCategories();
    checkAccessibilityPermission();
    setupStatusItem();
    buildMenu();
    on_.server.setHistoryStore(on_.historyStore);
    on_.server.start();
    on_.application.setServicesProvider(this);
    setupIncomingCallObservation();
    setupActiveCallObservation();
    setupCallEndObservation();
    on_.application.setActivationPolicy(ActivationPolicy::accessory);
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() {
    return false;
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
    if (!settingsWindow_ || !settingsWindow_->isVisible()) {
        showSettings(static_cast<int>(on_.userDefaults.integer(selectedTabKey)));
    }
    return true;
}

void AppDelegate::applicationOpenLinks(const std::vector<std::string>& addresses) {
    for (const std::string& address : addresses) {
        const auto link = parsePhoneLink(address);
        if (!link) {
            on_.log.line({"[AppDelegate] Not an address of a phone: ", address});
            continue;
        }
        const bool isCall = link->kind == PhoneLink::Kind::call;
        showSettings(isCall ? tabIndex::call : tabIndex::sms);
        if (const auto view = settingsView_.lock()) {
            isCall ? fillDialPad(*view, *link) : fillComposer(*view, *link);
        }
    }
}

void AppDelegate::applicationDidBecomeActive() {
    if (const auto view = settingsView_.lock()) {
        view->applicationDidBecomeActive();
    }
}

// Status item and menu

void AppDelegate::setupStatusItem() {
    on_.statusItem.create();
    if (!on_.statusItem.hasButton()) {
        return;
    }
    StatusImage image{.kind = StatusImage::Kind::asset, .name = "StatusIcon"};
    if (!on_.statusItem.hasImage(image)) {
        image = {
            .kind = StatusImage::Kind::symbol, .name = "antenna.radiowaves.left.and.right", .pointSize = 16};
        if (!on_.statusItem.hasImage(image)) {
            return;
        }
    }
    image.isTemplate = true;
    on_.statusItem.setImage(image);
}

MenuItem AppDelegate::makeItem(const MenuEntry& entry) {
    MenuItem item{.title = std::string(entry.title),
                  .keyEquivalent = std::string(entry.key),
                  .tag = entry.tag,
                  .operation = std::string(entry.operation)};
    switch (entry.command) {
    case MenuCommand::none:
        item.isEnabled = false;
        break;
    case MenuCommand::separator:
        item.isSeparator = true;
        break;
    case MenuCommand::quit:
        item.action = MenuItem::Action::terminate;
        item.onChosen = on_.terminate;
        break;
    default:
        item.action = MenuItem::Action::call;
        item.onChosen = [weak = weak_from_this(), command = entry.command] {
            if (auto self = weak.lock()) {
                perform(command, *self);
            }
        };
        break;
    }
    return item;
}

void AppDelegate::buildMenu() {
    std::vector<MenuItem> items;
    items.reserve(statusMenuEntries.size());
    for (const MenuEntry& entry : statusMenuEntries) {
        items.push_back(makeItem(entry));
    }
    on_.statusItem.setMenu(items);

    on_.server.setOnStatusChange([weak = weak_from_this(), &main = on_.main](const std::string& status) {
        hop(main, weak, [status](AppDelegate& self) {
            self.on_.statusItem.setItemTitle(statusLineTag, "Server: " + status);
        });
    });
}

void AppDelegate::onMenuCall() {
    showSettings(tabIndex::call);
}

void AppDelegate::onMenuSms() {
    showSettings(tabIndex::sms);
}

void AppDelegate::onMenuFileDrop() {
    showSettings(tabIndex::fileDrop);
}

void AppDelegate::onMenuHistory() {
    showSettings(tabIndex::notifications);
}

void AppDelegate::onMenuRemote() {
    showSettings(tabIndex::remote);
}

void AppDelegate::onMenuClipboardHistory() {
    showSettings(tabIndex::clipboard);
}

void AppDelegate::onMenuSettings() {
    showSettings(tabIndex::settings);
}

void AppDelegate::onMenuInfo() {
    showSettings(tabIndex::info);
}

void AppDelegate::onMenuSendClipboard() {
    readTextToSend(on_.pasteboard, [on = on_](const std::optional<std::string>& text) {
        if (text) {
            on.server.sendClipboard(*text);
        } else if (!on.pasteboard.isReadable()) {
            on.notificationCenter.add(
                {.identifier = Uuid::random().text(),
                 .content = {.title = "Clipboard Not Sent",
                             .body = "This desktop lets Velloway read the clipboard only while one "
                                     "of its windows is in front. Use the Clipboard tab.",
                             .hasDefaultSound = true}},
                nullptr);
        }
    });
}

// Main window

void AppDelegate::showSettings(int tab) {
    on_.userDefaults.setInteger(selectedTabKey, tab);
    on_.application.setActivationPolicy(ActivationPolicy::regular);
    if (!settingsWindow_) {
        buildSettingsWindow();
    }
    settingsWindow_->makeKeyAndOrderFront();
    on_.application.activate();
}

void AppDelegate::buildSettingsWindow() {
    const MainWindowProperties properties{
        .title = "Velloway Settings",
        .size = {850, 550},
        .minimumSize = {800, 500},
    };
    const auto view = on_.makeSettingsView();
    settingsView_ = view;
    auto window = on_.windows.makeMainWindow(properties, view, [weak = weak_from_this()] {
        if (auto self = weak.lock()) {
            self->windowWillClose();
        }
    });
    window->center();
    settingsWindow_ = std::move(window);
}

void AppDelegate::windowWillClose() {
    on_.application.setActivationPolicy(ActivationPolicy::accessory);
}

void AppDelegate::handleSendToAndroidService(const ServicePasteboard& pasteboard) {
    if (!pasteboard.hasTypes || !pasteboard.hasFileUrls || !pasteboard.urls) {
        return;
    }
    for (const std::filesystem::path& url : *pasteboard.urls) {
        on_.log.line({"[AppDelegate] Service triggered for file: ", url.filename().string()});
        on_.server.sendFile(url);
    }
    hop(on_.main, weak_from_this(), [](AppDelegate& self) { self.showSettings(tabIndex::fileDrop); });
}

// Permissions and answers to notifications

void AppDelegate::checkAccessibilityPermission() {
    on_.accessibility.isTrustedWithPrompt();
}

void AppDelegate::requestNotificationPermission() {
    on_.notificationCenter.getAuthorizationStatus(
        [weak = weak_from_this(), &main = on_.main](AuthorizationStatus status) {
            hop(main, weak, [status](AppDelegate& self) {
                if (status == AuthorizationStatus::denied) {
                    self.showNotificationDeniedAlert();
                } else if (status == AuthorizationStatus::notDetermined) {
                    self.askForNotificationPermission();
                }
            });
        });
}

void AppDelegate::askForNotificationPermission() {
    constexpr unsigned options =
        authorizationOptions::alert | authorizationOptions::sound | authorizationOptions::badge;
    on_.notificationCenter.requestAuthorization(
        options, [weak = weak_from_this(), &main = on_.main,
                  &log = on_.log](bool granted, const std::optional<std::string>& error) {
            if (error) {
                log.line({"[Notifications] Authorization error: ", *error});
            }
            if (!granted) {
                hop(main, weak, [](AppDelegate& self) { self.showNotificationDeniedAlert(); });
            }
        });
}

void AppDelegate::showNotificationDeniedAlert() {
    const Alert alert{
        .style = Alert::Style::warning,
        .messageText = "Notification Permission Required",
        .informativeText =
            "Velloway needs permission to show notifications forwarded from your Android device.\n\n"
            "Please open System Settings → Notifications → Velloway and set \"Allow Notifications\" to On.",
        .buttons = {"Open System Settings", "Not Now"},
    };
    on_.application.setActivationPolicy(ActivationPolicy::regular);
    on_.application.activate();
    if (on_.application.runModal(alert) == 0) {
        on_.workspace.openSettings(SettingsPane::notifications);
    }
    on_.main.asyncAfter(alertPolicyDelay, [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (self && !(self->settingsWindow_ && self->settingsWindow_->isVisible())) {
            self->on_.application.setActivationPolicy(ActivationPolicy::accessory);
        }
    });
}

void AppDelegate::registerNotificationCategories() {
    on_.notificationCenter.setCategories({{.identifier = replyCategory,
                                           .actions = {{.identifier = replyAction,
                                                        .title = "Reply",
                                                        .textInputButtonTitle = "Send",
                                                        .textInputPlaceholder = "Type your reply..."}}}});
}

void AppDelegate::didReceive(const NotificationResponse& response, std::function<void()> completion) {
    if (response.actionIdentifier == replyAction && response.userText) {
        on_.server.sendReply(response.requestIdentifier, *response.userText);
    }
    completion();
}

void AppDelegate::willPresent(const NotificationRequest& /*request*/,
                              std::function<void(unsigned options)> completion) {
    completion(presentationOptions::banner | presentationOptions::sound | presentationOptions::badge);
}

// Call windows

void AppDelegate::setupIncomingCallObservation() {
    callWindows_->setupIncomingCallObservation();
}

void AppDelegate::setupActiveCallObservation() {
    callWindows_->setupActiveCallObservation();
}

void AppDelegate::setupCallEndObservation() {
    callWindows_->setupCallEndObservation();
}

} // namespace velloway
