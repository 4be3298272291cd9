#include "features/IncomingFiles.h"

#include "base64/Base64.h"
#include "platform/Fatal.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace velloway {

namespace {

/// What a job costs beside its text, so that a flood of empty chunks is bounded too.
constexpr std::size_t jobBytes = 512;

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

/// A text with what keeps it alive.
struct HeldText {
    std::string_view text;
    std::shared_ptr<const void> owner;
};

HeldText copyOf(std::string_view text) {
    // Not a string, which would be filled with zeros first.
    const auto bytes = std::make_shared_for_overwrite<char[]>(text.size());
    std::copy(text.begin(), text.end(), bytes.get());
    return {{bytes.get(), text.size()}, bytes};
}

} // namespace

/// The transfers and their open files. File queue only.
class IncomingFiles::Writing {
public:
    /// The server's hold on the store, kept from the message until its last effect.
    using Link = std::shared_ptr<StoreLink>;

    explicit Writing(const Dependencies& dependencies) : on_(dependencies) {}

    void start(const std::string& fileName, std::int64_t fileSize, const Link& link);
    void chunk(const std::string& fileName, std::string_view fileData, bool isLast, const Link& link);

private:
    struct Session {
        std::unique_ptr<FileWriter> file;
        std::filesystem::path url;
        /// As announced; for the progress only.
        std::int64_t totalSize;
    };

    std::optional<std::string_view> decode(std::string_view fileData);
    Uuid recordOf(const std::string& fileName) const;
    void finalizeIncomingFile(const std::string& fileName, const Link& link);
    /// Runs `step` on the main queue with the store, or with null when that has gone.
    template <class Step> void onMain(const Link& link, Step step);

    const Dependencies on_;
    std::unordered_map<std::string, Session> incomingFileSessions_;
    /// The records of the transfers. A transfer whose file could not be opened stands here alone.
    std::unordered_map<std::string, Uuid> activeTransfers_;
    /// Where chunks are decoded; kept from one chunk to the next.
    std::unique_ptr<char[]> buffer_;
    std::size_t bufferSize_ = 0;
};

template <class Step> void IncomingFiles::Writing::onMain(const Link& link, Step step) {
    on_.main.async([link, step = std::move(step)] {
        const auto store = link ? link->historyStore.lock() : nullptr;
        step(store.get());
    });
}

void IncomingFiles::Writing::start(const std::string& fileName, std::int64_t fileSize, const Link& link) {
    const Uuid id = Uuid::random();
    activeTransfers_.insert_or_assign(fileName, id);

    const std::filesystem::path url = destination(on_.host, fileName);
    std::error_code error;
    auto file = on_.files.create(url, error);
    if (!file) {
        on_.log.line({"[WebSocketServer] Failed to create file handle: ", error.message()});
        return;
    }
    incomingFileSessions_.insert_or_assign(fileName, Session{std::move(file), url, fileSize});

    FileTransferRecord record{.id = id, .fileName = fileName, .fileSize = fileSize, .date = on_.host.now()};
    onMain(link, [record = std::move(record), &notifications = on_.notifications](HistoryStore* store) {
        if (store) {
            store->addFileTransfer(record);
        }
        notifications.postFileProgress(record.fileName, 0.0, record.id.text());
    });
}

void IncomingFiles::Writing::chunk(const std::string& fileName, std::string_view fileData, bool isLast,
                                   const Link& link) {
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
        on_.log.line({"[WebSocketServer] Error writing chunk: ", error.message()});
        return;
    }

    const double progress =
        session.totalSize > 0 ? static_cast<double>(*length) / static_cast<double>(session.totalSize) : 0.0;
    onMain(link, [id = recordOf(fileName), progress](HistoryStore* store) {
        if (store) {
            store->updateFileTransfer(id, progress, false, std::nullopt);
        }
    });
    if (isLast) {
        finalizeIncomingFile(fileName, link);
    }
}

std::optional<std::string_view> IncomingFiles::Writing::decode(std::string_view fileData) {
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

Uuid IncomingFiles::Writing::recordOf(const std::string& fileName) const {
    const auto found = activeTransfers_.find(fileName);
    return found == activeTransfers_.end() ? Uuid::random() : found->second;
}

void IncomingFiles::Writing::finalizeIncomingFile(const std::string& fileName, const Link& link) {
    const auto found = incomingFileSessions_.find(fileName);
    if (found == incomingFileSessions_.end()) {
        on_.log.line({"[WebSocketServer] Error: No active session found for file ", fileName, " to finalize."});
        return;
    }
    if (const std::error_code error = found->second.file->close()) {
        on_.log.line({"[WebSocketServer] Error closing file handle for ", fileName, ": ", error.message()});
    } else {
        on_.log.line({"[WebSocketServer] File handle closed for ", fileName});
    }
    std::filesystem::path url = std::move(found->second.url);
    incomingFileSessions_.erase(found);
    const Uuid id = recordOf(fileName);
    activeTransfers_.erase(fileName);
    if (incomingFileSessions_.empty()) {
        buffer_.reset();
        bufferSize_ = 0;
    }

    onMain(link, [id, name = fileName, url = std::move(url),
                  &notifications = on_.notifications](HistoryStore* store) {
        if (store) {
            store->updateFileTransfer(id, 1.0, true, url);
        }
        notifications.postSimple("File Received", "Successfully received '" + name + "'");
        notifications.postFileProgress(name, 1.0, id.text());
    });
}

// On the server queue.

IncomingFiles::IncomingFiles(Dependencies dependencies)
    : on_(std::move(dependencies)), writing_(std::make_shared<Writing>(on_)) {}

IncomingFiles::~IncomingFiles() {
    on_.fileQueue.async([writing = std::move(writing_)]() mutable { writing.reset(); });
}

template <class Step> void IncomingFiles::handOver(std::size_t bytes, const Backlog& backlog, Step step) {
    const std::size_t counted = bytes + jobBytes;
    if (backlog) {
        backlog->add(counted);
    }
    on_.fileQueue.async([writing = writing_, link = on_.link.lock(), backlog, counted, &server = on_.server,
                         step = std::move(step)] {
        step(*writing, link);
        if (backlog) {
            server.async([backlog, counted] { backlog->remove(counted); });
        }
    });
}

void IncomingFiles::start(std::string_view fileName, std::int64_t fileSize, const Backlog& backlog) {
    handOver(fileName.size(), backlog,
             [name = std::string(fileName), fileSize](Writing& writing, const Writing::Link& link) {
                 writing.start(name, fileSize, link);
             });
}

void IncomingFiles::chunk(std::string_view fileName, std::string_view fileData, bool isLast,
                          const Backlog& backlog, std::shared_ptr<const void> fileDataOwner) {
    handOver(fileName.size() + fileData.size(), backlog,
             [name = std::string(fileName),
              data = fileDataOwner ? HeldText{fileData, std::move(fileDataOwner)} : copyOf(fileData),
              isLast](Writing& writing, const Writing::Link& link) {
                 writing.chunk(name, data.text, isLast, link);
             });
}

} // namespace velloway
