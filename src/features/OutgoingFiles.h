#pragma once

#include "features/NotificationManager.h"
#include "platform/DispatchQueue.h"
#include "platform/Files.h"
#include "platform/Host.h"
#include "platform/Log.h"
#include "state/StoreLink.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace velloway {

/// Sends local files to the phone: a start message, then chunks of 1 MiB. The whole file is read and queued
/// before the first message leaves.
class OutgoingFiles {
public:
    /// Hands one message over for delivery; returns at once.
    using Send = std::function<void(std::string text)>;

    OutgoingFiles(DispatchQueue& main, DispatchQueue& server, std::weak_ptr<StoreLink> link,
                  NotificationManager& notifications, const Host& host, Files& files, Log& log, Send send);

    /// Returns at once; the job runs on the server queue and is skipped if the server has gone by then. Any
    /// thread.
    void sendFile(const std::filesystem::path& url);

private:
    /// What the job on the server queue works with; stands for the object, which may have gone by then.
    struct Job;

    DispatchQueue& main_;
    DispatchQueue& server_;
    std::weak_ptr<StoreLink> link_;
    NotificationManager& notifications_;
    const Host& host_;
    Files& files_;
    Log& log_;
    Send send_;
};

} // namespace velloway
