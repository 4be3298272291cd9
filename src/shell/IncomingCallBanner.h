#pragma once

#include "shell/CallPanelContent.h"
#include "state/Records.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace velloway {

/// What the panel of a ringing call shows and does. A value: another caller is another banner. Main thread.
struct IncomingCallBanner : CallPanelContent {
    IncomingCallBanner(std::shared_ptr<const IncomingCallInfo> shownInfo, std::function<void()> answer,
                       std::function<void()> hangup)
        : info(std::move(shownInfo)), onAnswer(std::move(answer)), onHangup(std::move(hangup)) {}

    /// Shared with whatever else needs it: the texts of a caller may be large.
    const std::shared_ptr<const IncomingCallInfo> info;
    const std::function<void()> onAnswer;
    const std::function<void()> onHangup;

    /// Takes blanks off, and takes "unknown" in any case of letters for nothing known.
    BannerText text() const;

    CallPanel panel() const override;
    [[nodiscard]] Subscription observe(std::function<void()>) override { return {}; }
    void pressLeft() override { onHangup(); }
    void pressRight() override { onAnswer(); }

    static constexpr std::string_view iconSymbol = "phone.fill";
    static constexpr std::string_view declineSymbol = "phone.down.fill";
    static constexpr std::string_view declineTooltip = "Decline";
    static constexpr std::string_view acceptSymbol = "phone.fill";
    static constexpr std::string_view acceptTooltip = "Accept";
};

} // namespace velloway
