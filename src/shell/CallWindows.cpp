#include "shell/CallWindows.h"

#include <map>
#include <utility>
#include <variant>

namespace velloway {

namespace {

constexpr std::string_view area = "[AppDelegate] ";
constexpr std::int64_t callOver = -1;
constexpr Size panelSize{350, 80};
/// From the right and top edges of the usable screen.
constexpr double margin = 20;

using TextMap = std::map<std::string, std::string>;

std::string entry(const TextMap& map, const std::string& key) {
    const auto found = map.find(key);
    return found == map.end() ? std::string() : found->second;
}

} // namespace

std::shared_ptr<CallWindows> CallWindows::make(const Dependencies& dependencies) {
    return std::shared_ptr<CallWindows>(new CallWindows(dependencies));
}

// Observers

void CallWindows::setupIncomingCallObservation() {
    cancellables_.push_back(on_.historyStore->incomingCallInfo.observeWithCurrent(
        [&main = on_.main, weak = weak_from_this()](const std::optional<IncomingCallInfo>& info) {
            hop(main, weak,
                [caller = info ? std::make_shared<const IncomingCallInfo>(*info) : nullptr](CallWindows& self) {
                    self.incomingCallChanged(caller);
                });
        }));
}

void CallWindows::setupActiveCallObservation() {
    followLater(AppNotification::prepareActiveCall, &CallWindows::prepareActiveCall);
}

void CallWindows::setupCallEndObservation() {
    followLater(AppNotification::callDurationUpdated, &CallWindows::durationUpdated);
}

template <class Step> void CallWindows::followLater(AppNotification notification, Step step) {
    cancellables_.push_back(on_.notifications.observe(
        notification, [&main = on_.main, weak = weak_from_this(), step](const AppNotificationObject& object) {
            hop(main, weak, [step, object](CallWindows& self) { (self.*step)(object); });
        }));
}

void CallWindows::incomingCallChanged(const Caller& info) {
    if (info) {
        on_.log.line({area, "Incoming call detected: ", info->number});
        showIncomingCallBanner(info);
    } else {
        on_.log.line({area, "Incoming call cleared"});
        closeIncomingCallBanner();
    }
}

void CallWindows::prepareActiveCall(const AppNotificationObject& object) {
    std::string number;
    std::string name;
    if (const auto* map = std::get_if<TextMap>(&object)) {
        number = entry(*map, "number");
        name = entry(*map, "name");
    } else if (const auto* text = std::get_if<std::string>(&object)) {
        number = *text;
    }
    if (!number.empty()) {
        showActiveCallWindow(name, number);
    }
}

void CallWindows::durationUpdated(const AppNotificationObject& object) {
    const auto* seconds = std::get_if<std::int64_t>(&object);
    if (seconds && *seconds == callOver) {
        on_.historyStore->incomingCallInfo.set(std::nullopt);
        closeActiveCallWindow();
    }
}

// Panels

void CallWindows::place(Window& panel) {
    if (const auto frame = on_.windows.mainScreenVisibleFrame()) {
        panel.setFrameOrigin(frame->maxX() - margin - panelSize.width,
                             frame->maxY() - margin - panelSize.height);
    }
}

void CallWindows::showIncomingCallBanner(const Caller& info) {
    if (incomingCallWindow_) {
        incomingCallWindow_->setContent(createBannerView(info));
        incomingCallWindow_->setIsVisible(true);
        incomingCallWindow_->orderFrontRegardless();
        return;
    }
    const auto panel =
        on_.windows.makePanel({.kind = PanelKind::ringingCall, .size = panelSize}, createBannerView(info));
    place(*panel);
    panel->setIsVisible(true);
    panel->makeKeyAndOrderFront();
    panel->orderFrontRegardless();
    incomingCallWindow_ = panel;
}

std::shared_ptr<IncomingCallBanner> CallWindows::createBannerView(const Caller& info) {
    const auto self = shared_from_this();
    return std::make_shared<IncomingCallBanner>(
        info,
        [self, info] {
            self->on_.server.answerCall();
            self->on_.notifications.post(AppNotification::prepareActiveCall,
                                         TextMap{{"number", info->number}, {"name", info->name.value_or("")}});
            self->on_.historyStore->incomingCallInfo.set(std::nullopt);
        },
        [self] {
            self->on_.server.hangupCall();
            self->on_.historyStore->incomingCallInfo.set(std::nullopt);
        });
}

void CallWindows::closeIncomingCallBanner() {
    if (incomingCallWindow_) {
        incomingCallWindow_->setIsVisible(false);
        incomingCallWindow_->orderOut();
        incomingCallWindow_.reset();
    }
}

void CallWindows::showActiveCallWindow(const std::string& name, const std::string& number) {
    if (activeCallWindow_) {
        return;
    }
    const auto panel =
        on_.windows.makePanel({.kind = PanelKind::runningCall, .size = panelSize},
                              std::make_shared<ActiveCallBanner>(name, number, on_.server, on_.notifications));
    place(*panel);
    panel->setIsVisible(true);
    panel->orderFrontRegardless();
    activeCallWindow_ = panel;
}

void CallWindows::closeActiveCallWindow() {
    if (activeCallWindow_) {
        activeCallWindow_->orderOut();
        activeCallWindow_.reset();
    }
}

} // namespace velloway
