#include "features/OutgoingFiles.h"

#include "features/FileMessages.h"
#include "text/Utf8.h"

#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace velloway {

namespace {

constexpr std::size_t chunkSize = 0x100000;

/// A separator at the end doesn't count, as with the path of a folder. File systems allow names that are not
/// UTF-8; a message with one would end the phone's connection.
std::string lastPathComponent(const std::filesystem::path& url) {
    return repairedUtf8(url.has_filename() ? url.filename().native() : url.parent_path().filename().native());
}

} // namespace

struct OutgoingFiles::Job {
    DispatchQueue& main;
    std::weak_ptr<StoreLink> link;
    NotificationManager& notifications;
    const Host& host;
    Files& files;
    Log& log;
    Send send;
    std::filesystem::path url;
    std::string fileName = lastPathComponent(url);

    void run() {
        if (const std::error_code error = sendAll()) {
            const std::string text = error.message();
            log.line({"[WebSocketServer] Failed to read/send file: ", text});
            notifications.postSimple("File Send Failed",
                                     "Could not read or send '" + fileName + "'. Error: " + text);
            return;
        }
        notifications.postSimple("File Sent", "Successfully sent '" + fileName + "' to Android");
    }

    std::error_code sendAll() {
        std::error_code error;
        auto file = files.open(url, error);
        if (!file) {
            return error;
        }
        const auto fileSize = file->size(error);
        if (!fileSize) {
            return error;
        }
        const Uuid id = Uuid::random();
        addRecord(id, *fileSize);
        send(fileTransferStartMessage(fileName, *fileSize));
        error = sendChunks(*file, id, *fileSize);
        return error ? error : file->close();
    }

    void addRecord(const Uuid& id, std::int64_t fileSize) {
        withStore(main, link,
                  [id, fileSize, name = fileName, source = url, &clock = host](HistoryStore& store) {
                      store.addFileTransfer({.id = id,
                                             .fileName = name,
                                             .url = source,
                                             .fileSize = fileSize,
                                             .date = clock.now(),
                                             .isOutgoing = true});
                  });
    }

    /// Ends only when as much was read as the file had at the start, however long a file that has shrunk since
    /// then takes to grow again.
    std::error_code sendChunks(FileReader& file, const Uuid& id, std::int64_t fileSize) {
        const auto buffer = std::make_unique_for_overwrite<char[]>(chunkSize);
        std::int64_t totalSent = 0;
        while (totalSent < fileSize) {
            std::error_code error;
            const auto count = file.readAt(totalSent, buffer.get(), chunkSize, error);
            if (!count) {
                return error;
            }
            if (*count == 0) {
                continue;
            }
            totalSent += static_cast<std::int64_t>(*count);
            const bool isLast = totalSent >= fileSize;
            if (auto text = fileChunkMessage(fileName, {buffer.get(), *count}, isLast)) {
                send(std::move(*text));
            }
            const double progress = static_cast<double>(totalSent) / static_cast<double>(fileSize);
            withStore(main, link, [id, progress, isLast](HistoryStore& store) {
                store.updateFileTransfer(id, progress, isLast, std::nullopt);
            });
        }
        return {};
    }
};

OutgoingFiles::OutgoingFiles(DispatchQueue& main, DispatchQueue& server, std::weak_ptr<StoreLink> link,
                             NotificationManager& notifications, const Host& host, Files& files, Log& log,
                             Send send)
    : main_(main),
      server_(server),
      link_(std::move(link)),
      notifications_(notifications),
      host_(host),
      files_(files),
      log_(log),
      send_(std::move(send)) {}

void OutgoingFiles::sendFile(const std::filesystem::path& url) {
    hop(server_, link_,
        [job = Job{main_, link_, notifications_, host_, files_, log_, send_, url}](StoreLink&) mutable {
            job.run();
        });
}

} // namespace velloway
