#pragma once

#include "features/NotificationManager.h"
#include "platform/DispatchQueue.h"
#include "platform/Host.h"
#include "platform/Log.h"
#include "state/StoreLink.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace velloway {

/// Writes the files that the phone sends into the Downloads folder, chunk by chunk. A transfer is known by its
/// file name alone, and outlives connections and restarts of the server.
///
/// Server queue only. Effects on the store and notifications go to the main queue.
class IncomingFiles {
public:
    IncomingFiles(DispatchQueue& main, std::weak_ptr<StoreLink> link, NotificationManager& notifications,
                  const Host& host, Log& log);
    /// Closes what is still open.
    ~IncomingFiles();

    /// `file_transfer_start`. An absent Downloads folder is fatal.
    void start(std::string_view fileName, std::int64_t fileSize);

    /// `file_chunk` and `file_transfer`. `fileData` is base64 text; characters outside the alphabet are
    /// skipped.
    void chunk(std::string_view fileName, std::string_view fileData, bool isLast);

private:
    struct Sessions;
    std::unique_ptr<Sessions> sessions_;
};

} // namespace velloway
