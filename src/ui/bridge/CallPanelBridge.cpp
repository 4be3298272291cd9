#include "bridge/CallPanelBridge.h"

#include "bridge/Convert.h"

#include <utility>

namespace velloway {

CallPanelBridge::CallPanelBridge(std::shared_ptr<CallPanelContent> content) {
    setContent(std::move(content));
}

void CallPanelBridge::setContent(std::shared_ptr<CallPanelContent> content) {
    changes_.reset();
    content_ = std::move(content);
    changes_ = content_->observe([this] { read(); });
    read();
}

void CallPanelBridge::read() {
    const CallPanel panel = content_->panel();
    panel_ = {.isRinging = panel.isRinging,
              .isMuted = panel.isMuted,
              .iconSymbol = toQt(panel.iconSymbol),
              .firstLine = cut(panel.text.firstLine, lineBytes),
              .secondLine = cut(panel.text.secondLine, lineBytes),
              .lastLine = cut(panel.text.lastLine, lineBytes),
              .leftSymbol = toQt(panel.left.symbol),
              .leftTooltip = toQt(panel.left.tooltip),
              .leftName = toQt(panel.left.name),
              .rightSymbol = toQt(panel.right.symbol),
              .rightTooltip = toQt(panel.right.tooltip),
              .rightName = toQt(panel.right.name)};
    emit panelChanged();
}

// A press can end the panel and, with it, this bridge.

void CallPanelBridge::pressLeft() {
    const auto content = content_;
    content->pressLeft();
}

void CallPanelBridge::pressRight() {
    const auto content = content_;
    content->pressRight();
}

} // namespace velloway
