#include "bridge/CallPanelBridge.h"

#include "bridge/Variants.h"
#include "shell/ActiveCallBanner.h"
#include "shell/IncomingCallBanner.h"

#include <utility>

namespace velloway {

CallPanelBridge::CallPanelBridge(std::shared_ptr<WindowContent> content, QObject* parent) : QObject(parent) {
    setContent(std::move(content));
}

CallPanelBridge::~CallPanelBridge() = default;

void CallPanelBridge::setContent(std::shared_ptr<WindowContent> content) {
    subscriptions_.clear();
    content_ = std::move(content);
    if (auto* active = dynamic_cast<ActiveCallBanner*>(content_.get())) {
        subscriptions_.push_back(active->duration.observe([this](std::int64_t) { read(); }));
        subscriptions_.push_back(active->isMuted.observe([this](bool) { read(); }));
    }
    read();
}

void CallPanelBridge::read() {
    BannerText text;
    if (const auto* ringing = dynamic_cast<const IncomingCallBanner*>(content_.get())) {
        text = ringing->text();
        kind_ = QStringLiteral("incomingCall");
        iconSymbol_ = toQt(IncomingCallBanner::iconSymbol);
        leftIsMute_ = false;
        leftSymbol_ = toQt(IncomingCallBanner::declineSymbol);
        leftTooltip_ = leftName_ = toQt(IncomingCallBanner::declineTooltip);
        rightSymbol_ = toQt(IncomingCallBanner::acceptSymbol);
        rightTooltip_ = rightName_ = toQt(IncomingCallBanner::acceptTooltip);
    } else if (const auto* active = dynamic_cast<const ActiveCallBanner*>(content_.get())) {
        text = active->text();
        kind_ = QStringLiteral("activeCall");
        iconSymbol_ = toQt(ActiveCallBanner::iconSymbol);
        leftIsMute_ = true;
        isMuted_ = active->isMuted.get();
        leftSymbol_ = toQt(active->muteSymbol());
        // These two have no tooltip; a screen reader still needs their names.
        leftName_ = isMuted_ ? QStringLiteral("Unmute") : QStringLiteral("Mute");
        rightSymbol_ = toQt(ActiveCallBanner::hangupSymbol);
        rightName_ = QStringLiteral("Hang up");
    }
    firstLine_ = toQt(text.firstLine);
    secondLine_ = toQt(text.secondLine.value_or(""));
    lastLine_ = toQt(text.lastLine);
    emit changed();
}

void CallPanelBridge::pressLeft() {
    // The press can end the panel and, with it, this bridge.
    const auto content = content_;
    if (auto* ringing = dynamic_cast<IncomingCallBanner*>(content.get())) {
        ringing->onHangup();
    } else if (auto* active = dynamic_cast<ActiveCallBanner*>(content.get())) {
        active->toggleMute();
    }
}

void CallPanelBridge::pressRight() {
    const auto content = content_;
    if (auto* ringing = dynamic_cast<IncomingCallBanner*>(content.get())) {
        ringing->onAnswer();
    } else if (auto* active = dynamic_cast<ActiveCallBanner*>(content.get())) {
        active->hangup();
    }
}

} // namespace velloway
