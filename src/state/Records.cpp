#include "state/Records.h"

#include "text/DateText.h"

namespace velloway {

std::string NotifPayload::formattedTime(const Host& host) const {
    const DateContext context{host.locale(), host.timeZone()};
    const double now = secondsSince1970(host.now());
    return RecentDays(now, context).isToday(time) ? shortTime(time, context) : shortDateAndTime(time, context);
}

} // namespace velloway
