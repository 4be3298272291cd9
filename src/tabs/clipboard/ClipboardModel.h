#pragma once

#include "tabs/Computed.h"
#include "tabs/TabDependencies.h"

#include <string>
#include <vector>

namespace velloway {

/// One received text, identified by `id`.
struct ClipboardRow {
    Uuid id;
    std::string text;
    std::string date;

    bool operator==(const ClipboardRow&) const = default;
};

/// The texts that came from the phone, and the sending of the clipboard. Main thread only.
class ClipboardModel {
public:
    explicit ClipboardModel(const TabDependencies& dependencies);

    /// In the order of the store.
    const Computed<std::vector<ClipboardRow>> rows;
    bool showsClear() const { return !with_.history->clipboardHistory.get().empty(); }

    /// Does nothing when the clipboard has no text.
    void sendCurrentClipboard();
    void copyToClipboard(const Uuid& record);
    void clearClipboard() { with_.history->clearClipboard(); }

private:
    std::vector<ClipboardRow> clipboardRows() const;

    const TabDependencies& with_;
};

} // namespace velloway
