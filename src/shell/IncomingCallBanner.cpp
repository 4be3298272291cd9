#include "shell/IncomingCallBanner.h"

#include "text/Case.h"
#include "text/Trim.h"

namespace velloway {

namespace {

bool isKnown(std::string_view text) {
    return !text.empty() && lowerCased(text) != "unknown";
}

} // namespace

BannerText IncomingCallBanner::text() const {
    const std::string name(
        trimBlanksAndLineEnds(info.name ? std::string_view(*info.name) : std::string_view()));
    const std::string number(trimBlanksAndLineEnds(info.number));
    const bool hasName = isKnown(name);
    const bool hasNumber = isKnown(number);

    BannerText text{.lastLine = "Incoming Call"};
    text.firstLine = hasName ? name : hasNumber ? number : "Unknown Caller";
    if (hasName && hasNumber && name != number) {
        text.secondLine = number;
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
