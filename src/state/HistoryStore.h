#pragma once

#include "state/Observable.h"
#include "state/Records.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// The live state of the link as the user interface sees it. In memory only; starts empty at each launch.
///
/// Main thread only. Lists are newest first, and `items`, `fileTransfers` and `clipboardHistory` keep their
/// newest 100 elements; an addition that trims is two changes, and so notifies twice.
class HistoryStore {
public:
    /// `host` dates the clipboard texts; it must outlive the store.
    explicit HistoryStore(const Host& host) : host_(host) {}

    Observable<std::vector<NotifPayload>> items;
    Observable<std::vector<SimInfo>> availableSIMs;
    Observable<std::vector<FileTransferRecord>> fileTransfers;
    Observable<std::vector<ClipboardRecord>> clipboardHistory;
    Observable<std::optional<std::string>> connectedRemoteIP;
    Observable<std::optional<std::string>> connectedWifiName;
    Observable<std::optional<std::string>> connectedDeviceName;
    Observable<std::optional<std::int64_t>> batteryLevel;
    Observable<bool> isCharging{false};
    Observable<std::optional<IncomingCallInfo>> incomingCallInfo;

    void add(NotifPayload payload);
    void addFileTransfer(FileTransferRecord record);
    void addClipboard(std::string text);

    /// Changes a row in place. An absent `url` keeps the one that the row has; an unknown `id` changes nothing
    /// and notifies nobody.
    void updateFileTransfer(const Uuid& id, double progress, bool isCompleted,
                            const std::optional<std::filesystem::path>& url);

    void clear();
    void clearClipboard();
    void clearFileTransfers();

private:
    static constexpr std::size_t maxCount = 100;

    const Host& host_;
};

} // namespace velloway
