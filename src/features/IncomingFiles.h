#pragma once

#include "features/NotificationManager.h"
#include "platform/DispatchQueue.h"
#include "platform/Files.h"
#include "platform/Host.h"
#include "platform/Log.h"
#include "state/StoreLink.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace velloway {

/// Writes the files that the phone sends into the Downloads folder, chunk by chunk. A transfer is known by its
/// file name alone, and outlives connections and restarts of the server.
///
/// Server queue only. Effects on the store and notifications go to the main queue.
class IncomingFiles {
public:
    IncomingFiles(DispatchQueue& main, std::weak_ptr<StoreLink> link, NotificationManager& notifications,
                  const Host& host, Files& files, Log& log);
    /// Closes what is still open.
    ~IncomingFiles();

    /// `file_transfer_start`. An absent Downloads folder is fatal.
    void start(std::string_view fileName, std::int64_t fileSize);

    /// `file_chunk` and `file_transfer`. `fileData` is base64 text; characters outside the alphabet are
    /// skipped.
    void chunk(std::string_view fileName, std::string_view fileData, bool isLast);

private:
    struct Session {
        std::unique_ptr<FileWriter> file;
        std::filesystem::path url;
        /// As announced; for the progress only.
        std::int64_t totalSize;
    };
    struct NameHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
    };
    template <class T> using ByName = std::unordered_map<std::string, T, NameHash, std::equal_to<>>;

    std::optional<std::string_view> decode(std::string_view fileData);
    Uuid recordOf(std::string_view fileName) const;
    void finalizeIncomingFile(std::string_view fileName);
    /// Runs `step` on the main queue with the store, or with null when that has gone; keeps the server's hold
    /// on the store until then.
    template <class Step> void onMain(Step step);

    DispatchQueue& main_;
    std::weak_ptr<StoreLink> link_;
    NotificationManager& notifications_;
    const Host& host_;
    Files& files_;
    Log& log_;

    ByName<Session> incomingFileSessions_;
    /// The records of the transfers. A transfer whose file could not be opened stands here alone.
    ByName<Uuid> activeTransfers_;
    /// Where chunks are decoded; kept from one chunk to the next.
    std::unique_ptr<char[]> buffer_;
    std::size_t bufferSize_ = 0;
};

} // namespace velloway
