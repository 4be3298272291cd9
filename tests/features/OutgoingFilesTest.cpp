#include "features/OutgoingFiles.h"
#include "base64/Base64.h"
#include "features/FeatureTest.h"
#include "features/FileMessages.h"

#include <atomic>
#include <cstdint>
#include <future>
#include <limits>
#include <memory>

namespace velloway::test {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t mebibyte = 1024 * 1024;

std::string bytesOfLength(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 1;
    for (char& c : bytes) {
        state = state * 1664525 + 1013904223;
        c = static_cast<char>(state >> 24);
    }
    return bytes;
}

std::string startText(const std::string& name, std::size_t size) {
    return R"({"action":"file_transfer_start","fileName":")" + name + R"(","fileSize":)" +
           std::to_string(size) + "}";
}

std::string chunkText(const std::string& name, std::string_view bytes, bool isLast) {
    std::string text = R"({"action":"file_chunk","fileName":")" + name + R"(","fileData":")";
    base64::scalar::appendEncodedEscaped(text, bytes);
    return text + R"(","isLast":)" + (isLast ? "true}" : "false}");
}

class OutgoingFilesTest : public FeatureTest {
protected:
    OutgoingFilesTest() {
        subscription_ = store->fileTransfers.observe([this](const auto& rows) {
            const FileTransferRecord& row = rows.front();
            host.journal.note("row " + row.fileName + " " + std::to_string(row.progress) +
                              (row.isCompleted ? " done" : ""));
        });
    }

    void send(const std::filesystem::path& file) {
        files.sendFile(file);
        host.drain();
    }

    /// Not gtest's equality: a difference would print megabytes.
    void expectSent(const std::vector<std::string>& expected) {
        EXPECT_TRUE(sent == expected) << sent.size() << " messages instead of " << expected.size();
    }
    static Banners fileSent(const std::string& name) {
        return {{"File Sent", "Successfully sent '" + name + "' to Android"}};
    }
    void expectFailure(const std::string& name, const std::string& error) {
        EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] Failed to read/send file: " + error}));
        EXPECT_EQ(banners(),
                  (Banners{{"File Send Failed", "Could not read or send '" + name + "'. Error: " + error}}));
    }
    const FileTransferRecord& row(std::size_t index = 0) const { return store->fileTransfers.get().at(index); }

    std::filesystem::path write(const std::string& name, std::string bytes) {
        return host.files.put(folder / name, std::move(bytes));
    }

    void note(std::string text) {
        sent.push_back(std::move(text));
        if (afterSend) {
            afterSend(sent.size());
        }
    }

    const std::filesystem::path folder = "/home/me";
    std::vector<std::string> sent;
    /// Called with the number of messages so far, this one included.
    std::function<void(std::size_t)> afterSend;
    /// Takes every chunk as it comes, unless switched off.
    bool takesChunks = true;
    std::shared_ptr<TextSeries> chunks;
    std::uint64_t chunkCount = 0;
    OutgoingFiles files{{.main = host.main,
                         .server = host.server,
                         .reading = host.server,
                         .notifications = notificationManager,
                         .host = host.host,
                         .files = host.files,
                         .log = host.log,
                         .send = [this](std::string text) { note(std::move(text)); },
                         .sendChunk =
                             [this](std::shared_ptr<TextSeries> series, std::uint64_t index) {
                                 ++chunkCount;
                                 if (takesChunks) {
                                     note(*series->atHand(index));
                                 } else {
                                     chunks = std::move(series);
                                 }
                             }},
                        link};

private:
    Subscription subscription_;
};

/// Notes whether the storage is used by jobs of the right queue alone.
class WatchedFiles : public Files {
public:
    WatchedFiles(FakeFiles& files, const FakeDispatchQueue& queue) : files_(files), queue_(queue) {}

    std::unique_ptr<FileWriter> create(const std::filesystem::path& path, std::error_code& error) override {
        note();
        return files_.create(path, error);
    }
    std::unique_ptr<FileReader> open(const std::filesystem::path& path, std::error_code& error) override {
        note();
        return std::make_unique<Reader>(*this, files_.open(path, error));
    }

    int calls = 0;

private:
    class Reader : public FileReader {
    public:
        Reader(WatchedFiles& files, std::unique_ptr<FileReader> file) : files_(files), file_(std::move(file)) {}

        std::optional<std::int64_t> size(std::error_code& error) override {
            files_.note();
            return file_->size(error);
        }
        std::optional<std::size_t> readAt(std::int64_t offset, char* to, std::size_t room,
                                          std::error_code& error) override {
            files_.note();
            return file_->readAt(offset, to, room, error);
        }
        std::error_code close() override {
            files_.note();
            return file_->close();
        }

    private:
        WatchedFiles& files_;
        std::unique_ptr<FileReader> file_;
    };

    void note() {
        ++calls;
        EXPECT_TRUE(queue_.isCurrent());
    }

    FakeFiles& files_;
    const FakeDispatchQueue& queue_;
};

} // namespace

TEST_F(OutgoingFilesTest, SendsASmallFileAsAStartAndOneLastChunk) {
    const auto file = write("a.txt", "hello");
    send(file);
    expectSent({R"({"action":"file_transfer_start","fileName":"a.txt","fileSize":5})",
                R"({"action":"file_chunk","fileName":"a.txt","fileData":"aGVsbG8=","isLast":true})"});
    EXPECT_EQ(banners(), fileSent("a.txt"));
    EXPECT_TRUE(host.log.lines().empty());
    EXPECT_EQ(host.files.openCount(file), 0);
}

TEST_F(OutgoingFilesTest, ReturnsAtOnceAndWorksOnTheServerQueue) {
    files.sendFile(write("a.txt", "hello"));
    EXPECT_TRUE(sent.empty());
    host.main.runAll();
    EXPECT_TRUE(sent.empty());
    host.server.runAll();
    EXPECT_EQ(sent.size(), 2u);
    EXPECT_EQ(banners(), fileSent("a.txt")) << "the banner does not wait for the main queue";
    EXPECT_TRUE(store->fileTransfers.get().empty());
    host.main.runAll();
    EXPECT_EQ(store->fileTransfers.get().size(), 1u);
}

TEST_F(OutgoingFilesTest, DatesTheRecordWhenTheMainQueueMakesIt) {
    const auto file = write("a.txt", "hello");
    files.sendFile(file);
    host.server.runAll();
    host.host.time += 1h;
    host.main.runOne();
    EXPECT_EQ(row(), (FileTransferRecord{.id = row().id,
                                         .fileName = "a.txt",
                                         .url = file,
                                         .fileSize = 5,
                                         .date = host.host.time,
                                         .isOutgoing = true}));
    host.main.runAll();
    EXPECT_EQ(row().url, file);
}

TEST_F(OutgoingFilesTest, ShowsTheShareOfWhatWasReadAndCompletesWithTheLastChunk) {
    send(write("a.txt", bytesOfLength(2 * mebibyte + mebibyte / 2)));
    const std::string banner = "add " + host.notificationCenter.requests.at(0).identifier;
    EXPECT_EQ(host.journal.take(), (Entries{banner, "row a.txt 0.000000", "row a.txt 0.400000",
                                            "row a.txt 0.800000", "row a.txt 1.000000 done"}));
}

TEST_F(OutgoingFilesTest, AnnouncesAnEmptyFileAndSendsNoChunk) {
    send(write("empty", ""));
    expectSent({startText("empty", 0)});
    EXPECT_EQ(banners(), fileSent("empty"));
    EXPECT_EQ(row().progress, 0.0);
    EXPECT_FALSE(row().isCompleted);
}

TEST_F(OutgoingFilesTest, CutsFilesIntoChunksOfOneMebibyte) {
    for (const std::size_t size : {mebibyte - 1, mebibyte, mebibyte + 1, 3 * mebibyte}) {
        sent.clear();
        const std::string bytes = bytesOfLength(size);
        send(write("a.bin", bytes));
        std::vector<std::string> expected{startText("a.bin", size)};
        for (std::size_t at = 0; at < size; at += mebibyte) {
            expected.push_back(
                chunkText("a.bin", std::string_view(bytes).substr(at, mebibyte), at + mebibyte >= size));
        }
        expectSent(expected);
        EXPECT_TRUE(row().isCompleted);
    }
}

TEST_F(OutgoingFilesTest, GoesByTheSizeAtTheStartWhenTheFileGrows) {
    const std::string bytes = bytesOfLength(mebibyte + 10);
    const auto file = write("a.bin", bytes);
    const std::string more = bytesOfLength(2 * mebibyte);
    afterSend = [&](std::size_t count) {
        if (count == 1) {
            host.files.put(file, bytes + more);
        }
    };
    send(file);
    const std::string whole = bytes + more;
    expectSent({startText("a.bin", mebibyte + 10), chunkText("a.bin", whole.substr(0, mebibyte), false),
                chunkText("a.bin", whole.substr(mebibyte, mebibyte), true)});
    EXPECT_GT(row().progress, 1.0);
    EXPECT_TRUE(row().isCompleted);
}

TEST_F(OutgoingFilesTest, SpinsOnAFileThatHasShrunkUntilItHasItsLengthAgain) {
    const std::string bytes = bytesOfLength(2 * mebibyte);
    const auto file = write("a.bin", bytes);
    std::atomic<bool> hasShrunk = false;
    afterSend = [&](std::size_t count) {
        if (count == 2) {
            host.files.put(file, bytes.substr(0, mebibyte));
            hasShrunk = true;
        }
    };
    files.sendFile(file);
    auto job = std::async(std::launch::async, [&] { host.server.runAll(); });
    EXPECT_EQ(job.wait_for(300ms), std::future_status::timeout) << "nothing ends the job";
    EXPECT_TRUE(hasShrunk);
    host.files.put(file, bytes);
    ASSERT_EQ(job.wait_for(60s), std::future_status::ready);
    host.main.runAll();
    for (std::size_t i = 1; i < sent.size(); ++i) {
        EXPECT_EQ(sent[i].ends_with(R"("isLast":true})"), i + 1 == sent.size());
    }
    EXPECT_TRUE(row().isCompleted);
    EXPECT_EQ(banners(), fileSent("a.bin"));
}

TEST_F(OutgoingFilesTest, PutsTheNameIntoTheStartAsItStandsAndEscapesItInTheChunks) {
    send(write("a \"b\"\\c.txt", "hello"));
    expectSent({"{\"action\":\"file_transfer_start\",\"fileName\":\"a \"b\"\\c.txt\",\"fileSize\":5}",
                chunkText(R"(a \"b\"\\c.txt)", "hello", true)});
    EXPECT_EQ(banners(), fileSent("a \"b\"\\c.txt"));
}

TEST_F(OutgoingFilesTest, RepairsANameThatIsNotUtf8) {
    const std::string repaired = "bad\xef\xbf\xbd.bin";
    send(write("bad\xff.bin", "hello"));
    expectSent({startText(repaired, 5), chunkText(repaired, "hello", true)});
    EXPECT_EQ(row().fileName, repaired);
    EXPECT_EQ(banners(), fileSent(repaired));
}

TEST_F(OutgoingFilesTest, FailsOnAFileThatIsNotThere) {
    send(folder / "gone.txt");
    expectFailure("gone.txt", "No such file or directory");
    EXPECT_TRUE(sent.empty());
    EXPECT_TRUE(store->fileTransfers.get().empty());
}

TEST_F(OutgoingFilesTest, FailsOnAFileThatDoesNotOpen) {
    for (const char* path : {"photos", "photos/"}) {
        host.files.openErrors[folder / path] = std::make_error_code(std::errc::is_a_directory);
        host.notificationCenter.requests.clear();
        send(folder / path);
        expectFailure("photos", "Is a directory");
    }
    EXPECT_TRUE(sent.empty());
    EXPECT_TRUE(store->fileTransfers.get().empty());
}

TEST_F(OutgoingFilesTest, FailsOnAFileWhoseSizeCannotBeRead) {
    host.files.sizeError = std::make_error_code(std::errc::io_error);
    send(write("a.bin", "hello"));
    expectFailure("a.bin", host.files.sizeError.message());
    EXPECT_TRUE(sent.empty());
    EXPECT_TRUE(store->fileTransfers.get().empty());
    EXPECT_EQ(host.files.openCount(folder / "a.bin"), 0);
}

TEST_F(OutgoingFilesTest, FailsOnAReadErrorAndLeavesTheRowWhereItIs) {
    const auto file = write("a.bin", bytesOfLength(2 * mebibyte));
    afterSend = [&](std::size_t count) {
        if (count == 2) {
            host.files.readError = std::make_error_code(std::errc::io_error);
        }
    };
    send(file);
    expectFailure("a.bin", host.files.readError.message());
    EXPECT_EQ(sent.size(), 2u);
    EXPECT_EQ(row().progress, 0.5);
    EXPECT_FALSE(row().isCompleted);
    EXPECT_EQ(host.files.openCount(file), 0);
}

TEST_F(OutgoingFilesTest, FailsOnACloseErrorAfterEverythingWasHandedOver) {
    host.files.closeError = std::make_error_code(std::errc::io_error);
    send(write("a.bin", "hello"));
    expectFailure("a.bin", host.files.closeError.message());
    EXPECT_EQ(sent.size(), 2u);
    EXPECT_TRUE(row().isCompleted);
}

TEST_F(OutgoingFilesTest, FinishesOneFileBeforeItBeginsTheNext) {
    files.sendFile(write("a", bytesOfLength(mebibyte + 1)));
    files.sendFile(write("b", "hello"));
    host.drain();
    ASSERT_EQ(sent.size(), 5u);
    EXPECT_EQ(sent[0], startText("a", mebibyte + 1));
    EXPECT_EQ(sent[3], startText("b", 5));
    EXPECT_EQ(sent[4], chunkText("b", "hello", true));
    EXPECT_EQ(row(0).fileName, "b");
    EXPECT_EQ(row(1).fileName, "a");
}

TEST_F(OutgoingFilesTest, ReadsAFileToItsEndWhenNobodyTakesTheChunks) {
    takesChunks = false;
    const auto file = write("a.bin", bytesOfLength(20 * mebibyte));
    send(file);
    EXPECT_EQ(chunkCount, 20u);
    EXPECT_EQ(banners(), fileSent("a.bin"));
    EXPECT_TRUE(row().isCompleted);
    EXPECT_EQ(host.files.openCount(file), 1) << "for those who take the chunks later";
    chunks.reset();
    EXPECT_EQ(host.files.openCount(file), 0);
}

TEST_F(OutgoingFilesTest, LeavesRoomForOtherWorkBetweenTwoChunks) {
    files.sendFile(write("a.bin", bytesOfLength(3 * mebibyte)));
    std::vector<std::size_t> sentBefore;
    while (host.server.runOne()) {
        host.server.async([&] { sentBefore.push_back(sent.size()); });
        if (sent.size() == 4) {
            break;
        }
    }
    for (const std::size_t count : {1u, 2u, 3u}) {
        EXPECT_THAT(sentBefore, testing::Contains(count));
    }
    host.server.runAll();
}

TEST_F(OutgoingFilesTest, TouchesTheStorageInJobsOfTheReadingQueueAlone) {
    FakeDispatchQueue reading;
    WatchedFiles watched(host.files, reading);
    std::shared_ptr<TextSeries> series;
    OutgoingFiles watchedFiles({.main = host.main,
                                .server = host.server,
                                .reading = reading,
                                .notifications = notificationManager,
                                .host = host.host,
                                .files = watched,
                                .log = host.log,
                                .send =
                                    [&](const std::string&) {
                                        EXPECT_TRUE(host.server.isCurrent());
                                        host.journal.note("start");
                                    },
                                .sendChunk =
                                    [&](std::shared_ptr<TextSeries> each, std::uint64_t) {
                                        EXPECT_TRUE(host.server.isCurrent());
                                        host.journal.note("chunk");
                                        series = std::move(each);
                                    }},
                               link);
    watchedFiles.sendFile(write("a.bin", bytesOfLength(2 * mebibyte + 1)));
    drain(host.main, host.server);
    EXPECT_EQ(watched.calls, 0);
    EXPECT_TRUE(host.journal.take().empty());
    drain(host.server, reading);
    EXPECT_THAT(host.journal.take(),
                testing::ElementsAre("start", "chunk", "chunk", "chunk", testing::StartsWith("add")));
    EXPECT_EQ(banners(), fileSent("a.bin"));
    EXPECT_EQ(watched.calls, 7) << "opened twice, its size read, three chunks read, closed";
    host.main.runAll();

    // What phones take later is read there too.
    SharedText text;
    series->make(1, [&](const SharedText& made, const auto&) { text = made; });
    host.server.runAll();
    EXPECT_EQ(watched.calls, 7);
    drain(host.server, reading);
    EXPECT_EQ(watched.calls, 8);
    EXPECT_TRUE(text);
}

TEST_F(OutgoingFilesTest, HoldsTheTextsOfAllFilesTogetherWithinOneBound) {
    takesChunks = false;
    send(write("a.bin", bytesOfLength(4 * mebibyte)));
    const auto first = std::move(chunks);
    EXPECT_TRUE(first->atHand(0));
    takesChunks = true;
    send(write("b.bin", bytesOfLength(12 * mebibyte)));
    EXPECT_FALSE(first->atHand(0)) << "the texts of the second file have taken its room";
}

TEST_F(OutgoingFilesTest, StopsWhenTheServerGoesInMidFile) {
    const auto file = write("a.bin", bytesOfLength(3 * mebibyte));
    afterSend = [&](std::size_t count) {
        if (count == 2) {
            link.reset();
        }
    };
    send(file);
    EXPECT_EQ(sent.size(), 2u);
    EXPECT_TRUE(banners().empty());
    EXPECT_EQ(host.files.openCount(file), 0);
}

TEST_F(OutgoingFilesTest, DoesNothingWhenTheServerHasGone) {
    files.sendFile(write("a.txt", "hello"));
    link.reset();
    host.drain();
    EXPECT_TRUE(sent.empty());
    EXPECT_TRUE(banners().empty());
    EXPECT_TRUE(host.log.lines().empty());
}

TEST_F(OutgoingFilesTest, SendsWithoutAStore) {
    store.reset();
    send(write("a.txt", "hello"));
    EXPECT_EQ(sent.size(), 2u);
    EXPECT_EQ(banners(), fileSent("a.txt"));
}

TEST(FileMessages, AnnounceAFileByItsNameAsItStands) {
    EXPECT_EQ(fileTransferStartMessage("a \"b\".txt", std::numeric_limits<std::int64_t>::max()),
              R"({"action":"file_transfer_start","fileName":"a "b".txt","fileSize":9223372036854775807})");
}

TEST(FileMessages, CarryAFilesBytesAsBase64) {
    EXPECT_EQ(fileChunkMessage("a/b.bin", "\xFF\xFF\xFF\xFE\x01", false),
              R"({"action":"file_chunk","fileName":"a\/b.bin","fileData":"\/\/\/\/\/gE=","isLast":false})");
    EXPECT_EQ(fileChunkMessage("e", "", true),
              R"({"action":"file_chunk","fileName":"e","fileData":"","isLast":true})");
}

TEST(FileMessages, WriteAFullChunkInMemoryOfJustItsLength) {
    const auto text = fileChunkMessage("a.bin", bytesOfLength(mebibyte), false);
    ASSERT_TRUE(text);
    EXPECT_LT(text->capacity(), text->size() + 128);
    EXPECT_TRUE(*text == chunkText("a.bin", bytesOfLength(mebibyte), false));
}

TEST(FileMessages, RefuseAChunkWhoseNameIsNotUtf8) {
    EXPECT_EQ(fileChunkMessage("\xc3(", "x", true), std::nullopt);
}

} // namespace velloway::test
