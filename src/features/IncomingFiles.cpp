#include "features/IncomingFiles.h"

#include "base64/Base64.h"
#include "platform/Fatal.h"

#include <utility>

namespace velloway {

namespace {

/// A name with separators in it leads to where it leads; an absolute one stays below the folder.
std::filesystem::path destination(const Host& host, std::string_view fileName) {
    const auto downloads = host.downloadsDirectory();
    if (!downloads) {
        fatal("The system names no Downloads folder");
    }
    std::string path = downloads->native();
    path.append("/").append(fileName);
    return path;
}

} // namespace

IncomingFiles::IncomingFiles(DispatchQueue& main, std::weak_ptr<StoreLink> link,
                             NotificationManager& notifications, const Host& host, Files& files, Log& log)
    : main_(main),
      link_(std::move(link)),
      notifications_(notifications),
      host_(host),
      files_(files),
      log_(log) {}

IncomingFiles::~IncomingFiles() = default;

template <class Step> void IncomingFiles::onMain(Step step) {
    main_.async([link = link_.lock(), step = std::move(step)] {
        const auto store = link ? link->historyStore.lock() : nullptr;
        step(store.get());
    });
}

void IncomingFiles::start(std::string_view fileName, std::int64_t fileSize) {
    const Uuid id = Uuid::random();
    activeTransfers_.insert_or_assign(std::string(fileName), id);

    const std::filesystem::path url = destination(host_, fileName);
    std::error_code error;
    auto file = files_.create(url, error);
    if (!file) {
        log_.line({"[WebSocketServer] Failed to create file handle: ", error.message()});
        return;
    }
    incomingFileSessions_.insert_or_assign(std::string(fileName), Session{std::move(file), url, fileSize});

    FileTransferRecord record{
        .id = id, .fileName = std::string(fileName), .fileSize = fileSize, .date = host_.now()};
    onMain([record = std::move(record), &notifications = notifications_](HistoryStore* store) {
        if (store) {
            store->addFileTransfer(record);
        }
        notifications.postFileProgress(record.fileName, 0.0, record.id.text());
    });
}

void IncomingFiles::chunk(std::string_view fileName, std::string_view fileData, bool isLast) {
    const auto found = incomingFileSessions_.find(fileName);
    if (found == incomingFileSessions_.end()) {
        return;
    }
    const auto bytes = decode(fileData);
    if (!bytes) {
        return;
    }
    Session& session = found->second;
    std::error_code error;
    const auto length = session.file->append(*bytes, error);
    if (!length) {
        log_.line({"[WebSocketServer] Error writing chunk: ", error.message()});
        return;
    }

    const double progress =
        session.totalSize > 0 ? static_cast<double>(*length) / static_cast<double>(session.totalSize) : 0.0;
    onMain([id = recordOf(fileName), progress](HistoryStore* store) {
        if (store) {
            store->updateFileTransfer(id, progress, false, std::nullopt);
        }
    });
    if (isLast) {
        finalizeIncomingFile(fileName);
    }
}

std::optional<std::string_view> IncomingFiles::decode(std::string_view fileData) {
    const std::size_t room = base64::decodeRoom(fileData.size());
    // One huge message must not hold its memory for ever.
    constexpr std::size_t keptRoom = 0x800000;
    if (room > bufferSize_ || bufferSize_ > keptRoom) {
        buffer_.reset();
        buffer_ = std::make_unique_for_overwrite<char[]>(room);
        bufferSize_ = room;
    }
    const auto size = base64::decodeInto(fileData, buffer_.get());
    if (!size) {
        return std::nullopt;
    }
    return std::string_view(buffer_.get(), *size);
}

Uuid IncomingFiles::recordOf(std::string_view fileName) const {
    const auto found = activeTransfers_.find(fileName);
    return found == activeTransfers_.end() ? Uuid::random() : found->second;
}

void IncomingFiles::finalizeIncomingFile(std::string_view fileName) {
    const auto found = incomingFileSessions_.find(fileName);
    if (found == incomingFileSessions_.end()) {
        log_.line({"[WebSocketServer] Error: No active session found for file ", fileName, " to finalize."});
        return;
    }
    if (const std::error_code error = found->second.file->close()) {
        log_.line({"[WebSocketServer] Error closing file handle for ", fileName, ": ", error.message()});
    } else {
        log_.line({"[WebSocketServer] File handle closed for ", fileName});
    }
    std::filesystem::path url = std::move(found->second.url);
    incomingFileSessions_.erase(found);
    const Uuid id = recordOf(fileName);
    if (const auto transfer = activeTransfers_.find(fileName); transfer != activeTransfers_.end()) {
        activeTransfers_.erase(transfer);
    }

    onMain([id, name = std::string(fileName), url = std::move(url),
            &notifications = notifications_](HistoryStore* store) {
        if (store) {
            store->updateFileTransfer(id, 1.0, true, url);
        }
        notifications.postSimple("File Received", "Successfully received '" + name + "'");
        notifications.postFileProgress(name, 1.0, id.text());
    });
}

} // namespace velloway
