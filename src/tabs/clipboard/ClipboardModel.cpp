#include "tabs/clipboard/ClipboardModel.h"

#include "features/ClipboardSync.h"
#include "tabs/FindRow.h"
#include "text/DateText.h"

namespace velloway {

ClipboardModel::ClipboardModel(const TabDependencies& dependencies)
    : rows([this] { return clipboardRows(); }, dependencies.history->clipboardHistory), with_(dependencies) {}

void ClipboardModel::sendCurrentClipboard() {
    readTextToSend(with_.pasteboard, [&server = with_.server](const std::optional<std::string>& text) {
        if (text) {
            server.sendClipboard(*text);
        }
    });
}

void ClipboardModel::copyToClipboard(const Uuid& record) {
    if (const ClipboardRecord* row = findRow(with_.history->clipboardHistory.get(), record)) {
        with_.pasteboard.clearContents();
        with_.pasteboard.setString(row->text);
    }
}

std::vector<ClipboardRow> ClipboardModel::clipboardRows() const {
    const std::vector<ClipboardRecord>& records = with_.history->clipboardHistory.get();
    const DateContext context{.locale = with_.host.locale(), .timeZone = with_.host.timeZone()};
    std::vector<ClipboardRow> made;
    made.reserve(records.size());
    for (const ClipboardRecord& record : records) {
        const double seconds = secondsSince1970(record.date);
        made.push_back(
            {.id = record.id, .text = record.text, .date = abbreviatedDateAndShortTime(seconds, context)});
    }
    return made;
}

} // namespace velloway
