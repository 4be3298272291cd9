#pragma once

#include "state/Records.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace velloway {

/// The lines of a call panel, top to bottom.
struct BannerText {
    std::string firstLine;
    std::optional<std::string> secondLine;
    std::string lastLine;

    bool operator==(const BannerText&) const = default;
};

/// What the panel of a ringing call shows and does. Main thread.
struct IncomingCallBanner {
    IncomingCallInfo info;
    std::function<void()> onAnswer;
    std::function<void()> onHangup;

    /// Takes blanks off, and takes "unknown" in any case of letters for nothing known.
    BannerText text() const;

    static constexpr std::string_view iconSymbol = "phone.fill";
    static constexpr std::string_view declineSymbol = "phone.down.fill";
    static constexpr std::string_view declineTooltip = "Decline";
    static constexpr std::string_view acceptSymbol = "phone.fill";
    static constexpr std::string_view acceptTooltip = "Accept";
};

} // namespace velloway
