#pragma once

#include "features/NotificationManager.h"
#include "platform/DispatchQueue.h"
#include "platform/Files.h"
#include "platform/Host.h"
#include "platform/Log.h"
#include "platform/Network.h"
#include "state/StoreLink.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace velloway {

/// Sends local files to the phone, one after the other: a start message, then chunks of 1 MiB. A file is read
/// from its start to its end without waiting for anybody; what a phone cannot take by then is read again later.
class OutgoingFiles {
public:
    /// Hands one message over for delivery; returns at once. Server queue.
    using Send = std::function<void(std::string text)>;
    using SendChunk = std::function<void(std::shared_ptr<TextSeries> chunks, std::uint64_t index)>;

    struct Dependencies {
        DispatchQueue& main;
        DispatchQueue& server;
        /// Where files are opened, read and closed; may be the server queue.
        DispatchQueue& reading;
        NotificationManager& notifications;
        const Host& host;
        Files& files;
        Log& log;
        Send send;
        SendChunk sendChunk;
    };

    OutgoingFiles(Dependencies dependencies, std::weak_ptr<StoreLink> link);

    /// Returns at once; nothing more is done once the server has gone. Any thread.
    void sendFile(const std::filesystem::path& url);

private:
    class Line;
    class Job;

    DispatchQueue& server_;
    std::weak_ptr<StoreLink> link_;
    /// Lives as long as there is a file to be read, the object or not.
    std::shared_ptr<Line> line_;
};

} // namespace velloway
