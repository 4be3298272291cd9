#include "features/OutgoingFiles.h"

#include "features/ChunkMaker.h"
#include "features/FileChunks.h"
#include "features/FileMessages.h"
#include "text/Utf8.h"

#include <deque>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace velloway {

namespace {

/// A separator at the end doesn't count, as with the path of a folder. File systems allow names that are not
/// UTF-8; a message with one would end the phone's connection.
std::string lastPathComponent(const std::filesystem::path& url) {
    return repairedUtf8(url.has_filename() ? url.filename().native() : url.parent_path().filename().native());
}

} // namespace

/// The files that wait for their turn. Server queue.
class OutgoingFiles::Line : public std::enable_shared_from_this<Line> {
public:
    Line(Dependencies dependencies, std::weak_ptr<StoreLink> serverLink)
        : on(std::move(dependencies)), link(std::move(serverLink)) {}

    void add(const std::filesystem::path& url) {
        waiting_.push_back(url);
        if (waiting_.size() == 1) {
            startFirst();
        }
    }
    void firstIsDone() {
        waiting_.pop_front();
        if (!waiting_.empty()) {
            startFirst();
        }
    }

    const Dependencies on;
    const std::weak_ptr<StoreLink> link;

private:
    void startFirst();

    /// The first one is being read.
    std::deque<std::filesystem::path> waiting_;
    std::weak_ptr<ChunkMaker> maker_;
};

/// The first reading of one file, step by step: each step reads on the reading queue and then, unless the
/// server has gone, does the rest on the server queue. Other work gets its turn between two steps.
class OutgoingFiles::Job : public std::enable_shared_from_this<Job> {
public:
    Job(std::shared_ptr<Line> line, const std::shared_ptr<ChunkMaker>& maker, const std::filesystem::path& url)
        : line_(std::move(line)),
          on_(line_->on),
          maker_(maker),
          url_(url),
          fileName_(lastPathComponent(url)),
          chunks_(std::make_shared<FileChunks>(maker, on_.files, url, fileName_)) {}

    void start() {
        on_.reading.async([self = shared_from_this()] {
            std::error_code error;
            const auto size = self->chunks_->open(error);
            self->onServer([size, error](Job& job) { size ? job.begin(*size) : job.end(error); });
        });
    }

private:
    template <class Step> void onServer(Step step) {
        hop(on_.server, line_->link,
            [self = shared_from_this(), step = std::move(step)](StoreLink&) mutable { step(*self); });
    }

    void begin(std::int64_t fileSize) {
        fileSize_ = fileSize;
        withStore(
            on_.main, line_->link,
            [id = id_, fileSize, name = fileName_, source = url_, &clock = on_.host](HistoryStore& store) {
                store.addFileTransfer({.id = id,
                                       .fileName = name,
                                       .url = source,
                                       .fileSize = fileSize,
                                       .date = clock.now(),
                                       .isOutgoing = true});
            });
        on_.send(fileTransferStartMessage(fileName_, fileSize));
        goOn(0);
    }

    void goOn(std::int64_t totalSent) {
        if (totalSent >= fileSize_) {
            on_.reading.async([self = shared_from_this()] {
                self->onServer([error = self->chunks_->close()](Job& job) { job.end(error); });
            });
            return;
        }
        const bool isTextWanted = chunks_->isNextTextWanted();
        on_.reading.async([self = shared_from_this(), isTextWanted,
                           room = isTextWanted ? maker_->room() : std::string()]() mutable {
            self->read(isTextWanted, std::move(room));
        });
    }

    /// Tries again, however long a file that has shrunk takes to grow to its former size.
    void read(bool isTextWanted, std::string room) {
        auto piece = chunks_->readNext(isTextWanted, room);
        if (!piece.end && !piece.error) {
            on_.reading.async([self = shared_from_this(), isTextWanted, room = std::move(room)]() mutable {
                self->read(isTextWanted, std::move(room));
            });
            return;
        }
        onServer([piece = std::move(piece)](Job& job) mutable { job.didRead(std::move(piece)); });
    }

    void didRead(FileChunks::Piece piece) {
        if (piece.error) {
            end(piece.error);
            return;
        }
        on_.sendChunk(chunks_, chunks_->didReadNext(std::move(piece.text)));
        const double progress = static_cast<double>(*piece.end) / static_cast<double>(fileSize_);
        withStore(on_.main, line_->link,
                  [id = id_, progress, isLast = *piece.end >= fileSize_](HistoryStore& store) {
                      store.updateFileTransfer(id, progress, isLast, std::nullopt);
                  });
        goOn(*piece.end);
    }

    void end(const std::error_code& error) {
        if (error) {
            const std::string text = error.message();
            on_.log.line({"[WebSocketServer] Failed to read/send file: ", text});
            on_.notifications.postSimple("File Send Failed",
                                         "Could not read or send '" + fileName_ + "'. Error: " + text);
        } else {
            on_.notifications.postSimple("File Sent", "Successfully sent '" + fileName_ + "' to Android");
        }
        line_->firstIsDone();
    }

    const std::shared_ptr<Line> line_;
    const Dependencies& on_;
    const std::shared_ptr<ChunkMaker> maker_;
    const std::filesystem::path url_;
    const std::string fileName_;
    const std::shared_ptr<FileChunks> chunks_;
    const Uuid id_ = Uuid::random();
    std::int64_t fileSize_ = 0;
};

void OutgoingFiles::Line::startFirst() {
    auto maker = maker_.lock();
    if (!maker) {
        maker = std::make_shared<ChunkMaker>(on.server, on.reading);
        maker_ = maker;
    }
    std::make_shared<Job>(shared_from_this(), maker, waiting_.front())->start();
}

OutgoingFiles::OutgoingFiles(Dependencies dependencies, std::weak_ptr<StoreLink> link)
    : server_(dependencies.server),
      link_(link),
      line_(std::make_shared<Line>(std::move(dependencies), std::move(link))) {}

void OutgoingFiles::sendFile(const std::filesystem::path& url) {
    hop(server_, link_, [line = line_, url](StoreLink&) { line->add(url); });
}

} // namespace velloway
