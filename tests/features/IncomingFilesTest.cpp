#include "features/IncomingFiles.h"
#include "features/FeatureTest.h"
#include "features/OpenFiles.h"
#include "features/TemporaryFolder.h"
#include "text/Base64.h"

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velloway::test {

namespace {

constexpr std::string_view one = "b25l";     // one
constexpr std::string_view two = "LXR3bw=="; // -two

class IncomingFilesTest : public FeatureTest {
protected:
    IncomingFilesTest() {
        host.host.downloads = folder.path();
        subscription_ = store->fileTransfers.observe([this](const auto& rows) {
            const FileTransferRecord& row = rows.front();
            host.journal.note("row " + row.fileName + " " + std::to_string(row.progress) +
                              (row.isCompleted ? " done" : ""));
        });
    }

    void start(std::string_view name, std::int64_t size = 0) {
        files->start(name, size);
        host.main.runAll();
    }
    void chunk(std::string_view name, std::string_view data, bool isLast = false) {
        files->chunk(name, data, isLast);
        host.main.runAll();
    }

    const FileTransferRecord& row(std::size_t index = 0) const { return store->fileTransfers.get().at(index); }
    std::string content(std::string_view name) const { return contentOf(folder / name); }
    Banners received(const std::string& name) const {
        return {{"Receiving File...", name + " (0%)"},
                {"File Received", "Successfully received '" + name + "'"},
                {"File Received", name + " (100%)"}};
    }

    TemporaryFolder folder;
    std::unique_ptr<IncomingFiles> files =
        std::make_unique<IncomingFiles>(host.main, link, notificationManager, host.host, host.log);

private:
    Subscription subscription_;
};

using IncomingFilesDeathTest = IncomingFilesTest;

/// No file of this process may grow beyond `bytes` while this lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : oldHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &oldLimit_);
        const rlimit limit{bytes, oldLimit_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &oldLimit_);
        std::signal(SIGXFSZ, oldHandler_);
    }

private:
    void (*oldHandler_)(int);
    rlimit oldLimit_{};
};

/// Lets a test step in wherever a job is handed over.
class MeddlingQueue : public FakeDispatchQueue {
public:
    void async(Job job) override {
        if (const auto hook = beforeEachJob) {
            hook();
        }
        FakeDispatchQueue::async(std::move(job));
    }
    std::function<void()> beforeEachJob;
};

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
    EXPECT_TRUE(std::filesystem::exists(folder / "a.txt"));
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

TEST_F(IncomingFilesTest, DropsAChunkOfAnUnknownFileWithoutAWord) {
    chunk("a.txt", one, true);
    EXPECT_FALSE(std::filesystem::exists(folder / "a.txt"));
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
    EXPECT_EQ(descriptorsOf(folder / "a.txt").size(), 1u);
    chunk("a.txt", two);
    chunk("a.txt", two, true);
    EXPECT_EQ(content("a.txt"), "-two-two");
    EXPECT_TRUE(row(0).isCompleted);
    EXPECT_EQ(row(1).progress, 0.5) << "the old row keeps its last progress";
    EXPECT_FALSE(row(1).isCompleted);
    EXPECT_TRUE(host.notificationCenter.delivered.contains(oldBanner));
}

TEST_F(IncomingFilesTest, BuildsThePathFromTheNameAsItStands) {
    std::filesystem::create_directories(folder / "downloads/sub");
    host.host.downloads = folder / "downloads";
    const std::string below(folder / "downloads/absolute.txt");
    for (const auto& [name, place] : std::initializer_list<std::pair<std::string, std::string>>{
             {"../beside.txt", "beside.txt"},
             {"sub/deep.txt", "downloads/sub/deep.txt"},
             {"/absolute.txt", "downloads/absolute.txt"},
             {"back\\slash \n\"ä.txt", "downloads/back\\slash \n\"ä.txt"}}) {
        start(name, 3);
        chunk(name, one, true);
        EXPECT_EQ(content(place), "one") << name;
        EXPECT_EQ(row().fileName, name);
        EXPECT_EQ(row().url, host.host.downloads->native() + "/" + name);
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
    std::ofstream(folder / "a.txt", std::ios::app) << "[foreign]";
    chunk("a.txt", two);
    EXPECT_EQ(content("a.txt"), "one[foreign]-two");
    EXPECT_EQ(row().progress, 1.6);
}

TEST_F(IncomingFilesTest, LeavesNoSessionAndNoRecordWhenTheFileCannotBeOpened) {
    folder.write("a file", "");
    std::filesystem::create_directory(folder / "a folder");
    for (const auto& [downloads, name, error] :
         std::initializer_list<std::tuple<std::string, std::string, std::string>>{
             {"missing", "a.txt", "No such file or directory"},
             {"a file", "a.txt", "Not a directory"},
             {"", "a folder", "Is a directory"},
             {"", "", "Is a directory"},
             {"", std::string("a\0b", 3), "Invalid argument"},
             {"", std::string(300, 'x'), "File name too long"}}) {
        host.host.downloads = folder / downloads;
        start(name, 3);
        EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] Failed to create file handle: " + error}));
        chunk(name, one, true);
    }
    EXPECT_TRUE(store->fileTransfers.get().empty());
    EXPECT_TRUE(banners().empty());
    EXPECT_TRUE(host.log.lines().empty());
}

TEST_F(IncomingFilesTest, GoesOnWithTheOldFileWhenANewStartFails) {
    start("a.txt", 6);
    const Uuid old = row().id;
    host.host.downloads = folder / "missing";
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
    EXPECT_DEATH(files->start("a.txt", 1), "Downloads");
}

TEST_F(IncomingFilesTest, KeepsTheTransferOpenWhenTheDiskIsFull) {
    std::filesystem::create_symlink("/dev/full", folder / "a.txt");
    start("a.txt", 3);
    host.journal.take();
    chunk("a.txt", one, true);
    chunk("a.txt", one, true);
    const std::string line = "[WebSocketServer] Error writing chunk: No space left on device";
    EXPECT_EQ(host.log.take(), (Entries{line, line}));
    EXPECT_TRUE(host.journal.entries().empty());
    EXPECT_FALSE(row().isCompleted);
    EXPECT_EQ(descriptorsOf("/dev/full").size(), 1u);
}

TEST_F(IncomingFilesTest, AppendsARepeatedChunkBehindThePartThatWasWritten) {
    start("a.txt", 3);
    {
        const FileSizeLimit limit(2);
        chunk("a.txt", one, true);
    }
    EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] Error writing chunk: File too large"}));
    EXPECT_EQ(content("a.txt"), "on");
    EXPECT_FALSE(row().isCompleted);
    chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "onone");
    EXPECT_TRUE(row().isCompleted);
    EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] File handle closed for a.txt"}));
}

TEST_F(IncomingFilesTest, FailsAChunkWhoseEndCannotBeFound) {
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    start("pipe", 3);
    EXPECT_EQ(host.log.take(),
              (Entries{"[WebSocketServer] Failed to create file handle: No such device or address"}));
    const int reader = ::open((folder / "pipe").c_str(), O_RDONLY | O_NONBLOCK);
    start("pipe", 3);
    chunk("pipe", one, true);
    EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] Error writing chunk: Illegal seek"}));
    EXPECT_FALSE(row().isCompleted);
    ::close(reader);
}

TEST_F(IncomingFilesTest, ReportsSuccessEvenIfTheFileCannotBeClosed) {
    MeddlingQueue main;
    IncomingFiles receiver(main, link, notificationManager, host.host, host.log);
    receiver.start("a.txt", 3);
    // Between the writing and the closing, the progress of the row goes to the main queue.
    main.beforeEachJob = [&] {
        main.beforeEachJob = nullptr;
        ::close(descriptorsOf(folder / "a.txt").at(0));
    };
    receiver.chunk("a.txt", one, true);
    EXPECT_EQ(host.log.take(),
              (Entries{"[WebSocketServer] Error closing file handle for a.txt: Bad file descriptor"}));
    main.runAll();
    EXPECT_TRUE(row().isCompleted);
    EXPECT_EQ(banners().back(), (std::pair<std::string, std::string>{"File Received", "a.txt (100%)"}));
    receiver.chunk("a.txt", one, true);
    EXPECT_EQ(content("a.txt"), "one") << "the session has gone";
}

TEST_F(IncomingFilesTest, ReleasesEveryHandleWhenFinishedAndAtTheEnd) {
    start("a.txt", 3);
    start("b.txt", 3);
    chunk("a.txt", one, true);
    EXPECT_TRUE(descriptorsOf(folder / "a.txt").empty());
    EXPECT_EQ(descriptorsOf(folder / "b.txt").size(), 1u);
    files.reset();
    EXPECT_TRUE(descriptorsOf(folder / "b.txt").empty());
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
    host.main.runAll();
    EXPECT_TRUE(row().isCompleted);
    EXPECT_EQ(banners(), received("a.txt"));
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
