#include "tabs/ClipboardTab.h"

#include "text/DateText.h"

namespace velloway {

std::vector<ClipboardRow> clipboardRows(const std::vector<ClipboardRecord>& records, const Host& host) {
    const DateContext context{.locale = host.locale(), .timeZone = host.timeZone()};
    std::vector<ClipboardRow> rows;
    rows.reserve(records.size());
    for (const ClipboardRecord& record : records) {
        const double seconds = secondsSince1970(record.date);
        rows.push_back(
            {.id = record.id, .text = record.text, .date = abbreviatedDateAndShortTime(seconds, context)});
    }
    return rows;
}

} // namespace velloway
