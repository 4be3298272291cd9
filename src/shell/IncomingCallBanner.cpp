#include "shell/IncomingCallBanner.h"

#include "tabs/Style.h"
#include "text/Case.h"
#include "text/Trim.h"
#include "text/Utf8.h"

namespace velloway {

namespace {

bool isKnown(std::string_view text) {
    constexpr std::string_view unknown = "unknown";
    return !text.empty() && (text.size() > 2 * unknown.size() || lowerCased(text) != unknown);
}

} // namespace

BannerText IncomingCallBanner::text() const {
    const std::string_view name =
        trimBlanksAndLineEnds(info->name ? std::string_view(*info->name) : std::string_view());
    const std::string_view number = trimBlanksAndLineEnds(info->number);
    const bool hasName = isKnown(name);
    const bool hasNumber = isKnown(number);

    BannerText text{.lastLine = "Incoming Call"};
    text.firstLine = head(hasName ? name : hasNumber ? number : "Unknown Caller", rowBytes);
    if (hasName && hasNumber && name != number) {
        text.secondLine = head(number, rowBytes);
    }
    return text;
}

CallPanel IncomingCallBanner::panel() const {
    return {.isRinging = true,
            .iconSymbol = iconSymbol,
            .text = text(),
            .left = {.symbol = declineSymbol, .name = declineTooltip, .tooltip = declineTooltip},
            .right = {.symbol = acceptSymbol, .name = acceptTooltip, .tooltip = acceptTooltip}};
}

} // namespace velloway
