#include "shell/ActiveCallBanner.h"

#include "tabs/CallsTab.h"

namespace velloway {

BannerText ActiveCallBanner::text() const {
    BannerText text{.firstLine = name.empty() ? number : name,
                    .lastLine = duration >= 0 ? formatDuration(duration) : "Connecting..."};
    if (!name.empty() && name != number) {
        text.secondLine = number;
    }
    return text;
}

} // namespace velloway
