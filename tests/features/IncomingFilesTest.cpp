#include "features/IncomingFiles.h"
#include "base64/Base64.h"
#include "features/FeatureTest.h"

namespace velloway::test {

namespace {

constexpr std::string_view one = "b25l";     // one
constexpr std::string_view two = "LXR3bw=="; // -two

class IncomingFilesTest : public FeatureTest {
protected:
    IncomingFilesTest() {
        host.host.downloads = folder;
        subscription_ = store->fileTransfers.observe([this](const auto& rows) {
            const FileTransferRecord& row = rows.front();
            host.journal.note("row " + row.fileName + " " + std::to_string(row.progress) +
                              (row.isCompleted ? " done" : ""));
        });
    }

    void start(std::string_view name, std::int64_t size = 0) {
        files->start(name, size);
        settle();
    }
    void chunk(std::string_view name, std::string_view data, bool isLast = false) {
        files->chunk(name, data, isLast);
        settle();
    }
    void settle() {
        host.fileQueue.runAll();
        host.main.runAll();
    }

    const FileTransferRecord& row(std::size_t index = 0) const { return store->fileTransfers.get().at(index); }
    std::string content(std::string_view name) const { return host.files.content(folder / name); }
    Banners received(const std::string& name) const {
        return {{"Receiving File...", name + " (0%)"},
                {"File Received", "Successfully received '" + name + "'"},
                {"File Received", name + " (100%)"}};
    }

    const std::filesystem::path folder = "/home/me/Downloads";
    std::unique_ptr<IncomingFiles> files =
        std::make_unique<IncomingFiles>(IncomingFiles::Dependencies{.main = host.main,
                                                                    .server = host.server,
                                                                    .fileQueue = host.fileQueue,
                                                                    .link = link,
                                                                    .notifications = notificationManager,
                                                                    .host = host.host,
                                                                    .files = host.files,
                                                                    .log = host.log});

private:
    Subscription subscription_;
};

using IncomingFilesDeathTest = IncomingFilesTest;

} // namespace

TEST_F(IncomingFilesTest, WritesChunksInTheOrderInWhichTheyCome) {
    start("a.txt", 7);
    chunk("a.txt", one);
    EXPECT_EQ(content("a.txt"), "one");
    chunk("a.txt", two, true);
    EXPECT_EQ(content("a.txt"), "one-two");
    EXPECT_EQ(banners(), received("a.txt"));
    EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] File handle closed for a.txt"}));
}

TEST_F(IncomingFilesTest, MakesTheRecordWithTheFileStillWithoutAPlace) {
    files->start("a.txt", 7);
    host.fileQueue.runAll();
    EXPECT_TRUE(host.files.exists(folder / "a.txt"));
    host.host.time += std::chrono::hours(1);
    host.main.runAll();
    FileTransferRecord expected{
        .id = row().id, .fileName = "a.txt", .fileSize = 7, .date = host.host.time - std::chrono::hours(1)};
    EXPECT_EQ(row(), expected);

    chunk("a.txt", one, true);
    expected.progress = 1.0;
    expected.isCompleted = true;
    expected.url = folder / "a.txt";
    EXPECT_EQ(row(), expected);
}

TEST_F(IncomingFilesTest, ShowsProgressAsOneBannerUnderTheRecordsIdentity) {
    start("a.txt", 7);
    chunk("a.txt", one, true);
    const auto& requests = host.notificationCenter.requests;
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_EQ(requests[0].identifier, row().id.text());
    EXPECT_NE(requests[1].identifier, row().id.text());
    EXPECT_EQ(requests[2].identifier, row().id.text());
    EXPECT_FALSE(requests[0].content.hasDefaultSound);
    EXPECT_TRUE(requests[1].content.hasDefaultSound && requests[2].content.hasDefaultSound);
    EXPECT_EQ(host.notificationCenter.delivered.size(), 2u);
}

TEST_F(IncomingFilesTest, ChangesTheRowBeforeItShowsABanner) {
    start("a.txt", 4);
    const std::string progressBanner = "add " + row().id.text();
    EXPECT_EQ(host.journal.take(), (Entries{"row a.txt 0.000000", progressBanner}));
    chunk("a.txt", one);
    EXPECT_EQ(host.journal.take(), (Entries{"row a.txt 0.750000"}));
    files->chunk("a.txt", one, true);
    host.fileQueue.runAll();
    host.main.runOne();
    EXPECT_EQ(host.journal.take(), (Entries{"row a.txt 1.500000"}));
    host.main.runOne();
    const std::string finished = "add " + host.notificationCenter.requests[1].identifier;
    EXPECT_EQ(host.journal.take(), (Entries{"row a.txt 1.000000 done", finished, progressBanner}));
    EXPECT_EQ(host.main.pending(), 0u);
}

TEST_F(IncomingFilesTest, StaysAtZeroWithoutASizeAndJumpsToTheEnd) {
    for (const std::int64_t size : {std::int64_t{0}, std::int64_t{-5}}) {
        start("a.txt", size);
        chunk("a.txt", one);
        EXPECT_EQ(row().progress, 0.0);
        EXPECT_EQ(row().fileSize, size);
        chunk("a.txt", one, true);
        EXPECT_EQ(row().progress, 1.0);
    }
}

TEST_F(IncomingFilesTest, KnowsTheProgressOfAFileOfOneByte) {
    start("a.txt", 1);
    chunk("a.txt", "YQ==");
    EXPECT_EQ(row().progress, 1.0);
    EXPECT_FALSE(row().isCompleted);
}

TEST_F(IncomingFilesTest, DropsAChunkOfAnUnknownFileWithoutAWord) {
    chunk("a.txt", one, true);
    EXPECT_FALSE(host.files.exists(folder / "a.txt"));
    EXPECT_TRUE(store->fileTransfers.get().empty());
    EXPECT_TRUE(host.log.lines().empty());
    EXPECT_TRUE(host.journal.entries().empty());
}

TEST_F(IncomingFilesTest, DropsASecondLastChunkWithoutAWord) {
    start("a.txt", 3);
    chunk("a.txt", one, true);
    host.log.take();
    host.journal.take();
    chunk("a.txt", two, true);
    EXPECT_EQ(content("a.txt"), "one");
    EXPECT_TRUE(host.log.lines().empty());
    EXPECT_TRUE(host.journal.entries().empty());
}

TEST_F(IncomingFilesTest, KeepsInterleavedTransfersApart) {
    start("a.txt", 6);
    start("b.txt", 8);
    chunk("a.txt", one);
    chunk("b.txt", two);
    EXPECT_EQ(row(1).progress, 0.5);
    EXPECT_EQ(row(0).progress, 0.5);
    chunk("b.txt", two, true);
    EXPECT_FALSE(row(1).isCompleted);
    chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "oneone");
    EXPECT_EQ(content("b.txt"), "-two-two");
    EXPECT_TRUE(row(0).isCompleted && row(1).isCompleted);
}

TEST_F(IncomingFilesTest, OverwritesAFinishedFileOfTheSameName) {
    start("a.txt", 4);
    chunk("a.txt", two, true);
    start("a.txt", 3);
    EXPECT_EQ(content("a.txt"), "");
    chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "one");
    ASSERT_EQ(store->fileTransfers.get().size(), 2u);
    EXPECT_NE(row(0).id, row(1).id);
    EXPECT_EQ(row(0).url, row(1).url);
}

TEST_F(IncomingFilesTest, StartsOverWhenTheSameNameIsAnnouncedAgain) {
    start("a.txt", 6);
    chunk("a.txt", one);
    const auto oldBanner = row().id.text();
    start("a.txt", 8);
    EXPECT_EQ(content("a.txt"), "");
    EXPECT_EQ(host.files.openCount(folder / "a.txt"), 1);
    chunk("a.txt", two);
    chunk("a.txt", two, true);
    EXPECT_EQ(content("a.txt"), "-two-two");
    EXPECT_TRUE(row(0).isCompleted);
    EXPECT_EQ(row(1).progress, 0.5) << "the old row keeps its last progress";
    EXPECT_FALSE(row(1).isCompleted);
    EXPECT_TRUE(host.notificationCenter.delivered.contains(oldBanner));
}

TEST_F(IncomingFilesTest, BuildsThePathFromTheNameAsItStands) {
    for (const auto& [name, place] : std::initializer_list<std::pair<std::string, std::string>>{
             {"../beside.txt", "/home/me/beside.txt"},
             {"sub/deep.txt", "/home/me/Downloads/sub/deep.txt"},
             {"/absolute.txt", "/home/me/Downloads/absolute.txt"},
             {"back\\slash \n\"ä.txt", "/home/me/Downloads/back\\slash \n\"ä.txt"}}) {
        start(name, 3);
        chunk(name, one, true);
        EXPECT_EQ(host.files.content(place), "one") << name;
        EXPECT_EQ(row().fileName, name);
        EXPECT_EQ(row().url, "/home/me/Downloads/" + name);
    }
}

TEST_F(IncomingFilesTest, SkipsLineBreaksInsideTheText) {
    start("a.txt", 3);
    chunk("a.txt", "b2\r\n5l\r\n", true);
    EXPECT_EQ(content("a.txt"), "one");
    EXPECT_TRUE(row().isCompleted);
}

TEST_F(IncomingFilesTest, IgnoresAChunkThatCannotBeDecodedEvenIfItIsTheLast) {
    start("a.txt", 3);
    host.journal.take();
    chunk("a.txt", "b25", true);
    EXPECT_EQ(content("a.txt"), "");
    EXPECT_TRUE(host.journal.entries().empty());
    EXPECT_TRUE(host.log.lines().empty());
    chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "one");
    EXPECT_TRUE(row().isCompleted);
}

TEST_F(IncomingFilesTest, FinishesOnAnEmptyLastChunk) {
    start("a.txt", 3);
    chunk("a.txt", one);
    chunk("a.txt", "", true);
    EXPECT_EQ(content("a.txt"), "one");
    EXPECT_TRUE(row().isCompleted);
}

TEST_F(IncomingFilesTest, ReportsAFileThatCameShortAsReceived) {
    start("a.txt", 1000);
    chunk("a.txt", one, true);
    EXPECT_EQ(row().progress, 1.0);
    EXPECT_EQ(banners(), received("a.txt"));
}

TEST_F(IncomingFilesTest, AppendsBehindWhatOthersWroteMeanwhile) {
    start("a.txt", 10);
    chunk("a.txt", one);
    host.files.put(folder / "a.txt", "one[foreign]");
    chunk("a.txt", two);
    EXPECT_EQ(content("a.txt"), "one[foreign]-two");
    EXPECT_EQ(row().progress, 1.6);
}

TEST_F(IncomingFilesTest, LeavesNoSessionAndNoRecordWhenTheFileCannotBeOpened) {
    const auto error = std::make_error_code(std::errc::permission_denied);
    host.files.openErrors[folder / "a.txt"] = error;
    start("a.txt", 3);
    chunk("a.txt", one, true);
    EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] Failed to create file handle: " + error.message()}));
    EXPECT_TRUE(store->fileTransfers.get().empty());
    EXPECT_TRUE(banners().empty());
    EXPECT_EQ(host.main.pending(), 0u);
}

TEST_F(IncomingFilesTest, GoesOnWithTheOldFileWhenANewStartFails) {
    start("a.txt", 6);
    const Uuid old = row().id;
    host.files.openErrors[folder / "a.txt"] = std::make_error_code(std::errc::permission_denied);
    start("a.txt", 6);
    chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "one");
    EXPECT_EQ(row().id, old);
    EXPECT_EQ(row().progress, 0.0) << "the failed start has taken the record's place";
    EXPECT_FALSE(row().isCompleted);
    EXPECT_EQ(banners().back(), (std::pair<std::string, std::string>{"File Received", "a.txt (100%)"}));
    EXPECT_NE(host.notificationCenter.requests.back().identifier, old.text());
}

TEST_F(IncomingFilesDeathTest, StopsTheProcessWhenThereIsNoDownloadsFolder) {
    host.host.downloads.reset();
    EXPECT_DEATH(start("a.txt", 1), "Fatal error: The system names no Downloads folder\n");
}

TEST_F(IncomingFilesTest, KeepsTheTransferOpenWhenTheDiskIsFull) {
    host.files.appendError = std::make_error_code(std::errc::no_space_on_device);
    start("a.txt", 3);
    host.journal.take();
    chunk("a.txt", one, true);
    chunk("a.txt", one, true);
    const std::string line = "[WebSocketServer] Error writing chunk: No space left on device";
    EXPECT_EQ(host.log.take(), (Entries{line, line}));
    EXPECT_TRUE(host.journal.entries().empty());
    EXPECT_EQ(row().progress, 0.0);
    EXPECT_FALSE(row().isCompleted);
    EXPECT_EQ(host.files.openCount(folder / "a.txt"), 1);
}

TEST_F(IncomingFilesTest, AppendsARepeatedChunkBehindThePartThatWasWritten) {
    start("a.txt", 3);
    host.files.appendError = std::make_error_code(std::errc::no_space_on_device);
    host.files.writtenBeforeError = 2;
    chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "on");
    host.files.appendError.clear();
    host.log.take();
    chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "onone");
    EXPECT_TRUE(row().isCompleted);
    EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] File handle closed for a.txt"}));
}

TEST_F(IncomingFilesTest, ReportsSuccessEvenIfTheFileCannotBeClosed) {
    start("a.txt", 3);
    host.files.closeError = std::make_error_code(std::errc::io_error);
    chunk("a.txt", one, true);
    EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] Error closing file handle for a.txt: " +
                                        host.files.closeError.message()}));
    EXPECT_TRUE(row().isCompleted);
    EXPECT_EQ(banners(), received("a.txt"));
    chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "one") << "the session has gone";
}

TEST_F(IncomingFilesTest, ReleasesEveryHandleWhenFinishedAndAtTheEnd) {
    start("a.txt", 3);
    start("b.txt", 3);
    chunk("a.txt", one, true);
    EXPECT_EQ(host.files.openCount(folder / "a.txt"), 0);
    EXPECT_EQ(host.files.openCount(folder / "b.txt"), 1);
    files.reset();
    host.fileQueue.runAll();
    EXPECT_EQ(host.files.openCount(folder / "b.txt"), 0);
}

TEST_F(IncomingFilesTest, KeepsThePartialFileWhenThePhoneNeverComesBack) {
    start("a.txt", 9);
    chunk("a.txt", one);
    files.reset();
    EXPECT_EQ(content("a.txt"), "one");
    EXPECT_EQ(row().url, std::nullopt);
    EXPECT_FALSE(row().isCompleted);
}

TEST_F(IncomingFilesTest, ShowsTheBannersWithoutAStore) {
    store.reset();
    start("a.txt", 3);
    chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "one");
    EXPECT_EQ(banners(), received("a.txt"));
}

TEST_F(IncomingFilesTest, StillChangesTheStoreWhenTheServerGoesBeforeTheMainQueueRuns) {
    files->start("a.txt", 3);
    files->chunk("a.txt", one, true);
    files.reset();
    link.reset();
    settle();
    EXPECT_TRUE(row().isCompleted);
    EXPECT_EQ(banners(), received("a.txt"));
}

TEST_F(IncomingFilesTest, TouchesTheStorageInJobsOfTheFileQueueAlone) {
    int calls = 0;
    host.files.onWriterCall = [&] {
        ++calls;
        EXPECT_TRUE(host.fileQueue.isCurrent());
    };
    files->start("a.txt", 6);
    files->chunk("a.txt", one, false);
    files->chunk("a.txt", one, true);
    files->start("b.txt", 6);
    files->chunk("b.txt", one, false);
    host.main.runAll();
    host.server.runAll();
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(host.journal.entries().empty());
    settle();
    EXPECT_EQ(content("a.txt"), "oneone");
    EXPECT_EQ(banners().size(), 4u);
    files.reset();
    EXPECT_EQ(host.files.openCount(folder / "b.txt"), 1);
    settle();
    EXPECT_EQ(host.files.openCount(folder / "b.txt"), 0);
    EXPECT_EQ(calls, 7) << "two are made, three pieces are written, two are closed";
}

TEST_F(IncomingFilesTest, WritesWhatItWasGivenWhereverTheTextHasGoneSince) {
    std::string text(one);
    files->start("a.txt", 3);
    files->chunk("a.txt", text, true);
    text.assign(text.size(), '!');
    settle();
    EXPECT_EQ(content("a.txt"), "one");
}

TEST_F(IncomingFilesTest, CountsInTheBacklogOfAPhoneWhatIsNotFinished) {
    const auto backlog = std::make_shared<FileBacklog>();
    const auto other = std::make_shared<FileBacklog>();
    int times = 0;
    backlog->setOnLess([&] {
        ++times;
        EXPECT_TRUE(host.server.isCurrent());
    });
    const std::string text(FileBacklog::mostBytes / 2, 'A');
    files->start("a.txt", 3, backlog);
    EXPECT_FALSE(backlog->isEmpty());
    files->chunk("a.txt", text, false, backlog);
    EXPECT_FALSE(backlog->isFull());
    files->chunk("a.txt", text, false, other);
    EXPECT_FALSE(backlog->isFull());
    files->chunk("unknown", text, true, backlog);
    EXPECT_TRUE(backlog->isFull());
    EXPECT_FALSE(other->isFull());

    host.fileQueue.runAll();
    EXPECT_TRUE(backlog->isFull()) << "it belongs to the server queue";
    host.server.runOne();
    EXPECT_TRUE(backlog->isFull()) << "the start is short";
    host.server.runOne();
    EXPECT_FALSE(backlog->isFull());
    EXPECT_FALSE(backlog->isEmpty());
    host.server.runAll();
    EXPECT_TRUE(backlog->isEmpty());
    EXPECT_TRUE(other->isEmpty());
    EXPECT_EQ(times, 3);
}

TEST_F(IncomingFilesTest, AFloodOfEmptyChunksFillsTheBacklogToo) {
    const auto backlog = std::make_shared<FileBacklog>();
    for (int chunk = 0; chunk < 100'000 && !backlog->isFull(); ++chunk) {
        files->chunk("a.txt", "", false, backlog);
    }
    EXPECT_TRUE(backlog->isFull());
}

TEST_F(IncomingFilesTest, TakesChunksOfManySizes) {
    std::string whole;
    start("big", 0);
    for (const std::size_t size : {1u, 1000u, 3u * 1024 * 1024, 48u, 2u * 1024 * 1024 + 1, 0u, 7u}) {
        std::string part(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            part[i] = static_cast<char>(i * 131 + size);
        }
        std::string text;
        base64::appendEncodedEscaped(text, part);
        chunk("big", text);
        whole += part;
    }
    chunk("big", "", true);
    EXPECT_TRUE(content("big") == whole);
}

} // namespace velloway::test
