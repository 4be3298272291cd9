#include "features/FileChunks.h"
#include "base64/Base64.h"
#include "fakes/FakeDispatchQueue.h"
#include "fakes/FakeFiles.h"
#include "features/ChunkMaker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velloway::test {

namespace {

constexpr std::size_t chunkSize = FileChunks::chunkSize;

/// A file of which no two chunks are alike.
std::string fileOfChunks(std::size_t count, std::size_t more = 0) {
    std::string bytes(count * chunkSize + more, '\0');
    for (std::size_t at = 0; at < bytes.size(); at += 64) {
        bytes[at] = static_cast<char>(at >> 6);
        bytes[at + 1 < bytes.size() ? at + 1 : at] = static_cast<char>(at / chunkSize + 1);
    }
    return bytes;
}

class FileChunksTest : public testing::Test {
protected:
    std::shared_ptr<FileChunks> open(const std::string& name) {
        auto chunks = std::make_shared<FileChunks>(maker, files, "/" + name, name);
        std::error_code error;
        EXPECT_TRUE(chunks->open(error)) << error.message();
        return chunks;
    }
    /// Reads the whole file once, as the sending job does.
    std::shared_ptr<FileChunks> readAll(const std::string& name) {
        auto chunks = open(name);
        const auto size = static_cast<std::int64_t>(files.content("/" + name).size());
        for (std::int64_t end = 0; end < size;) {
            std::string room = maker->room();
            auto piece = chunks->readNext(chunks->isNextTextWanted(), room);
            end = piece.end.value();
            chunks->didReadNext(std::move(piece.text));
        }
        EXPECT_FALSE(chunks->close());
        return chunks;
    }
    void put(const std::string& name, std::string bytes) { files.put("/" + name, std::move(bytes)); }

    struct Answer {
        SharedText text;
        std::optional<NetworkError> error;
    };
    Answer make(FileChunks& chunks, std::uint64_t index) {
        std::optional<Answer> answer;
        chunks.make(index, [&](const SharedText& text, const auto& error) { answer = {text, error}; });
        EXPECT_FALSE(answer) << "never within the call";
        drain(server, reading);
        return answer.value_or(Answer{nullptr, NetworkError{"not answered", ""}});
    }
    SharedText take(FileChunks& chunks, std::uint64_t index) {
        if (SharedText text = chunks.atHand(index)) {
            return text;
        }
        return make(chunks, index).text;
    }
    std::string expected(const std::string& name, std::uint64_t index) {
        const std::string bytes = files.content("/" + name);
        std::string text = R"({"action":"file_chunk","fileName":")" + name + R"(","fileData":")";
        base64::scalar::appendEncodedEscaped(text, bytes.substr(index * chunkSize, chunkSize));
        return text + R"(","isLast":)" + ((index + 1) * chunkSize >= bytes.size() ? "true}" : "false}");
    }
    std::string error(FileChunks& chunks, std::uint64_t index) {
        const Answer answer = make(chunks, index);
        EXPECT_FALSE(answer.text);
        return answer.error ? answer.error->localizedDescription : "none";
    }

    FakeFiles files;
    // After the files, which jobs that are left at the end may hold.
    FakeDispatchQueue server;
    FakeDispatchQueue reading;
    std::shared_ptr<ChunkMaker> maker = std::make_shared<ChunkMaker>(server, reading);
};

} // namespace

TEST_F(FileChunksTest, EveryTextCanBeTakenAfterTheWholeFileWasRead) {
    put("a", fileOfChunks(20, 17));
    const auto chunks = readAll("a");
    for (std::uint64_t index = 0; index <= 20; ++index) {
        const SharedText text = take(*chunks, index);
        ASSERT_TRUE(text);
        ASSERT_TRUE(*text == expected("a", index)) << index;
    }
}

TEST_F(FileChunksTest, AConnectionThatIsFarBehindGetsTheSameTexts) {
    put("a", fileOfChunks(20));
    const auto chunks = readAll("a");
    for (std::uint64_t index = 0; index < 20; ++index) {
        take(*chunks, index);
        const SharedText behind = take(*chunks, index / 2);
        ASSERT_TRUE(behind && *behind == expected("a", index / 2)) << index;
    }
}

TEST_F(FileChunksTest, ConnectionsAtTheSamePlaceShareOneText) {
    put("a", fileOfChunks(20));
    const auto chunks = readAll("a");
    std::vector<SharedText> texts;
    for (int connection = 0; connection < 3; ++connection) {
        chunks->make(15, [&](const SharedText& text, const auto&) { texts.push_back(text); });
    }
    drain(server, reading);
    texts.push_back(chunks->atHand(15));
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_TRUE(texts[0]);
    EXPECT_EQ(std::count(texts.begin(), texts.end(), texts[0]), 4);
}

TEST_F(FileChunksTest, OnlyTheFirstTextsAreMadeWhenNobodyTakesAny) {
    put("a", fileOfChunks(20));
    const auto chunks = readAll("a");
    EXPECT_FALSE(chunks->isNextTextWanted());
    std::vector<bool> found;
    for (std::uint64_t index = 0; index < 6; ++index) {
        found.push_back(maker->find(1, index) != nullptr);
    }
    EXPECT_EQ(found, (std::vector<bool>{true, true, true, true, false, false}));
}

TEST_F(FileChunksTest, TheNextTextIsMadeWhileOneLeaves) {
    put("a", fileOfChunks(20));
    const auto chunks = readAll("a");
    EXPECT_FALSE(chunks->atHand(10));
    drain(server, reading);
    EXPECT_TRUE(chunks->atHand(11)) << "made before anybody asked";
    EXPECT_FALSE(chunks->atHand(10)) << "nobody asked for it to be made";
}

TEST_F(FileChunksTest, TextsAreHeldUpToAFewMebibytes) {
    put("a", fileOfChunks(40));
    put("b", std::string(10 * chunkSize, '\xff'));
    const auto plain = readAll("a");
    const auto slashes = readAll("b");
    std::vector<std::weak_ptr<const std::string>> given;
    for (std::uint64_t index = 0; index < 40; ++index) {
        given.push_back(take(*plain, index));
        given.push_back(take(*slashes, index % 10));
        std::size_t held = 0;
        for (const auto& each : given) {
            const SharedText text = each.lock();
            held += text ? text->size() : 0;
        }
        ASSERT_LE(held, std::size_t{12} << 20);
    }
}

TEST_F(FileChunksTest, AnEmptyFileIsNotKeptOpenForLater) {
    put("a", "");
    put("b", "x");
    const auto empty = open("a");
    const auto other = open("b");
    EXPECT_EQ(files.openCount("/a"), 1);
    EXPECT_EQ(files.openCount("/b"), 2);
}

TEST_F(FileChunksTest, ANameThatIsNotUtf8GivesNoText) {
    put("a", "bytes");
    FileChunks chunks(maker, files, "/a", "\xFF");
    std::error_code error;
    ASSERT_EQ(chunks.open(error), 5);
    std::string room;
    const auto piece = chunks.readNext(true, room);
    EXPECT_EQ(piece.end, 5);
    EXPECT_EQ(piece.text, "");
}

TEST_F(FileChunksTest, ATextThatAConnectionStillSendsStaysAsItIsWhileOthersAreMade) {
    put("a", fileOfChunks(40));
    const auto chunks = readAll("a");
    const SharedText held = take(*chunks, 0);
    for (std::uint64_t index = 1; index < 40; ++index) {
        ASSERT_TRUE(take(*chunks, index));
    }
    EXPECT_TRUE(*held == expected("a", 0));
}

TEST_F(FileChunksTest, NoMoreThanTwelveMebibytesOfOrdinaryTextsAreHeld) {
    put("a", fileOfChunks(20));
    const auto chunks = readAll("a");
    std::vector<std::weak_ptr<const std::string>> given;
    for (std::uint64_t index = 0; index < 20; ++index) {
        given.push_back(take(*chunks, index));
    }
    const auto held =
        std::count_if(given.begin(), given.end(), [](const auto& each) { return !each.expired(); });
    EXPECT_EQ(held, 8) << "of 1.4 MB each";
}

TEST_F(FileChunksTest, EveryTextOfManyThatAreAskedForAtOnceIsMade) {
    put("a", fileOfChunks(20));
    const auto chunks = readAll("a");
    int made = 0;
    for (std::uint64_t index = 10; index < 16; ++index) {
        chunks->make(index, [&](const SharedText& text, const auto&) { made += text ? 1 : 0; });
    }
    drain(server, reading);
    EXPECT_EQ(made, 6);
}

TEST_F(FileChunksTest, AFileThatHasChangedEndsBeforeTheChangeForEverybody) {
    const std::string bytes = fileOfChunks(20);
    std::string changed = bytes;
    changed[10 * chunkSize + 99] = '!';
    put("a", bytes);
    const auto chunks = readAll("a");
    EXPECT_TRUE(make(*chunks, 12).text);
    put("a", changed);
    EXPECT_EQ(error(*chunks, 10), "The file has changed since it was read");
    EXPECT_EQ(error(*chunks, 11), "The file has changed since it was read");
    EXPECT_FALSE(chunks->atHand(12)) << "it would leave a hole";
    EXPECT_TRUE(make(*chunks, 9).text) << "what is before the change is as it was";
    put("a", bytes);
    EXPECT_EQ(error(*chunks, 10), "The file has changed since it was read") << "the answer stays the same";
}

TEST_F(FileChunksTest, AFileThatHasShrunkGivesNoMoreTexts) {
    const std::string bytes = fileOfChunks(20);
    put("a", bytes);
    const auto chunks = readAll("a");
    put("a", bytes.substr(0, 10 * chunkSize + 10));
    EXPECT_EQ(error(*chunks, 10), "The file has changed since it was read");
}

TEST_F(FileChunksTest, AFileThatHasGrownIsSentAsItWas) {
    const std::string bytes = fileOfChunks(6, 5);
    put("a", bytes);
    const auto chunks = readAll("a");
    const std::string last = expected("a", 6);
    put("a", bytes + "more");
    const SharedText text = make(*chunks, 6).text;
    EXPECT_TRUE(text && *text == last);
}

TEST_F(FileChunksTest, AReadErrorIsPassedOn) {
    put("a", fileOfChunks(20));
    const auto chunks = readAll("a");
    files.readError = std::make_error_code(std::errc::io_error);
    EXPECT_EQ(error(*chunks, 10), files.readError.message());
}

TEST_F(FileChunksTest, AFileStaysOpenUntilNobodyNeedsItsChunks) {
    put("a", fileOfChunks(2));
    auto chunks = readAll("a");
    EXPECT_EQ(files.openCount("/a"), 1);
    chunks.reset();
    EXPECT_EQ(files.openCount("/a"), 0);
    EXPECT_EQ(maker->openFiles, 0);
}

TEST_F(FileChunksTest, ManyFilesAreOpenedOnlyWhenTheirTextsAreMade) {
    std::vector<std::shared_ptr<FileChunks>> all;
    for (int number = 0; number < 70; ++number) {
        const std::string name = std::to_string(number);
        put(name, "contents of " + name);
        all.push_back(readAll(name));
    }
    const auto isOpen = [&](int number) { return files.openCount("/" + std::to_string(number)) > 0; };
    EXPECT_TRUE(isOpen(63));
    EXPECT_FALSE(isOpen(64));
    const SharedText text = make(*all[69], 0).text;
    EXPECT_TRUE(text && *text == expected("69", 0));
    EXPECT_FALSE(isOpen(69));
    files.openErrors["/68"] = std::make_error_code(std::errc::too_many_files_open);
    EXPECT_EQ(error(*all[68], 0), "Too many open files");
}

TEST_F(FileChunksTest, NothingIsMadeOfAFileThatHasGoneMeanwhile) {
    put("a", fileOfChunks(20));
    auto chunks = readAll("a");
    bool isAnswered = false;
    for (std::uint64_t index = 10; index < 15; ++index) {
        chunks->make(index, [&](const SharedText&, const auto&) { isAnswered = true; });
    }
    server.runAll();
    std::weak_ptr<FileChunks> watch = chunks;
    reading.runOne();
    reading.runOne();
    chunks.reset();
    drain(server, reading);
    EXPECT_TRUE(watch.expired());
    EXPECT_TRUE(isAnswered) << "what was being read when the file went";
}

} // namespace velloway::test
