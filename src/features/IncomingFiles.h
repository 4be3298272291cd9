#pragma once

#include "features/FileBacklog.h"
#include "features/NotificationManager.h"
#include "platform/DispatchQueue.h"
#include "platform/Files.h"
#include "platform/Host.h"
#include "platform/Log.h"
#include "state/StoreLink.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace velloway {

/// Writes the files that the phone sends into the Downloads folder, chunk by chunk. A transfer is known by its
/// file name alone, and outlives connections and restarts of the server.
///
/// Server queue only. Decoding and every call to the file system are jobs of the file queue, in the order of
/// the calls; their effects on the store and notifications go to the main queue from there. Whoever hands over
/// a backlog sees in it what is not finished yet.
class IncomingFiles {
public:
    /// All of it must outlive the jobs that are left behind.
    struct Dependencies {
        DispatchQueue& main;
        DispatchQueue& server;
        DispatchQueue& fileQueue;
        std::weak_ptr<StoreLink> link;
        NotificationManager& notifications;
        const Host& host;
        Files& files;
        Log& log;
    };
    using Backlog = std::shared_ptr<FileBacklog>;

    explicit IncomingFiles(Dependencies dependencies);
    /// Has what is still open closed, once the jobs that wait are done.
    ~IncomingFiles();
    IncomingFiles(const IncomingFiles&) = delete;
    IncomingFiles& operator=(const IncomingFiles&) = delete;

    /// `file_transfer_start`. An absent Downloads folder is fatal.
    void start(std::string_view fileName, std::int64_t fileSize, const Backlog& backlog = nullptr);

    /// `file_chunk` and `file_transfer`. `fileData` is base64 text; characters outside the alphabet are
    /// skipped. It is copied unless `fileDataOwner` keeps it alive, on any thread.
    void chunk(std::string_view fileName, std::string_view fileData, bool isLast,
               const Backlog& backlog = nullptr, std::shared_ptr<const void> fileDataOwner = nullptr);

private:
    /// What belongs to the file queue.
    class Writing;

    template <class Step> void handOver(std::size_t bytes, const Backlog& backlog, Step step);

    Dependencies on_;
    std::shared_ptr<Writing> writing_;
};

} // namespace velloway
