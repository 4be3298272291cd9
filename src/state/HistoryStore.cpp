#include "state/HistoryStore.h"

#include <algorithm>
#include <utility>

namespace velloway {

namespace {

template <class T> void insertNewest(Observable<std::vector<T>>& list, T element, std::size_t maxCount) {
    list.modify([&](std::vector<T>& rows) { rows.insert(rows.begin(), std::move(element)); });
    if (list.get().size() > maxCount) {
        list.modify([&](std::vector<T>& rows) { rows.resize(maxCount); });
    }
}

} // namespace

void HistoryStore::add(NotifPayload payload) {
    insertNewest(items, std::move(payload), maxCount);
}

void HistoryStore::addFileTransfer(FileTransferRecord record) {
    insertNewest(fileTransfers, std::move(record), maxCount);
}

void HistoryStore::addClipboard(std::string text) {
    insertNewest(clipboardHistory, ClipboardRecord{.text = std::move(text), .date = host_.now()}, maxCount);
}

void HistoryStore::updateFileTransfer(const Uuid& id, double progress, bool isCompleted,
                                      const std::optional<std::filesystem::path>& url) {
    const auto& rows = fileTransfers.get();
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.id == id; });
    if (found == rows.end()) {
        return;
    }
    const auto index = found - rows.begin();
    fileTransfers.modify([&](std::vector<FileTransferRecord>& changed) {
        FileTransferRecord& row = changed[static_cast<std::size_t>(index)];
        row.progress = progress;
        row.isCompleted = isCompleted;
        if (url) {
            row.url = url;
        }
    });
}

void HistoryStore::clear() {
    items.set({});
}

void HistoryStore::clearClipboard() {
    clipboardHistory.set({});
}

void HistoryStore::clearFileTransfers() {
    fileTransfers.set({});
}

} // namespace velloway
