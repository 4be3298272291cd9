#include "phone/Base64.h"
#include "phone/FileReceiver.h"
#include "phone/FileSender.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

namespace velloway::phone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A folder that goes with the test.
class Files : public testing::Test {
protected:
    Files() {
        char pattern[] = "/tmp/velloway-phone-XXXXXX";
        folder_ = mkdtemp(pattern);
    }
    ~Files() override { std::filesystem::remove_all(folder_); }

    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
        return folder_ / name;
    }
    std::string read(const std::string& name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static std::vector<std::string> all(FileSender& sender) {
        std::vector<std::string> messages;
        while (auto message = sender.next()) {
            messages.push_back(std::move(*message));
        }
        return messages;
    }

    std::filesystem::path folder_;
};

TEST(Base64, FollowsTheKnownExamples) {
    const std::pair<const char*, const char*> examples[] = {{"", ""},
                                                            {"f", "Zg=="},
                                                            {"fo", "Zm8="},
                                                            {"foo", "Zm9v"},
                                                            {"foob", "Zm9vYg=="},
                                                            {"fooba", "Zm9vYmE="},
                                                            {"foobar", "Zm9vYmFy"},
                                                            {"\xff\xfb\xbf", "//u/"}};
    for (const auto& [bytes, text] : examples) {
        EXPECT_EQ(encodeBase64(bytes), text);
        EXPECT_EQ(decodeBase64(text), bytes);
    }
    EXPECT_EQ(decodeBase64("Zm9v\r\nYmFy"), "foobar");
}

TEST(Base64, ThatNoEncoderWritesIsRefused) {
    for (const char* text : {"Zg", "Zg=", "Z===", "====", "Zm9v!", "Zm=v", "Zg==Zg=="}) {
        EXPECT_EQ(decodeBase64(text), std::nullopt) << text;
    }
}

TEST_F(Files, GoOutAsAStartAndChunksOfTheSizeAskedFor) {
    FileSender sender({.path = write("a.bin", "0123456789"), .chunkSize = 4});
    EXPECT_THAT(
        all(sender),
        ElementsAre(R"({"action":"file_transfer_start","fileName":"a.bin","fileSize":10})",
                    R"({"action":"file_chunk","fileName":"a.bin","fileData":"MDEyMw==","isLast":false})",
                    R"({"action":"file_chunk","fileName":"a.bin","fileData":"NDU2Nw==","isLast":false})",
                    R"({"action":"file_chunk","fileName":"a.bin","fileData":"ODk=","isLast":true})"));
    EXPECT_EQ(sender.sent(), 10);
}

TEST_F(Files, EndWithAFullChunkWhenTheSizeIsAMultipleOfIt) {
    FileSender sender({.path = write("a.bin", "01234567"), .chunkSize = 4});
    const auto messages = all(sender);
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_THAT(messages[2], HasSubstr("\"isLast\":true"));
}

TEST_F(Files, WithNoBytesEndWithAnEmptyChunk) {
    FileSender sender({.path = write("none", "")});
    EXPECT_THAT(all(sender),
                ElementsAre(R"({"action":"file_transfer_start","fileName":"none","fileSize":0})",
                            R"({"action":"file_chunk","fileName":"none","fileData":"","isLast":true})"));
}

TEST_F(Files, WriteTheirSlashesEscapedUnlessToldOtherwise) {
    const std::string path = write("s", "\xff\xff\xff");
    FileSender escaped({.path = path});
    EXPECT_THAT(all(escaped)[1], HasSubstr(R"("fileData":"\/\/\/\/")"));
    FileSender plain({.path = path, .escaped = false});
    EXPECT_THAT(all(plain)[1], HasSubstr(R"("fileData":"////")"));
}

TEST_F(Files, GoOutWholeInOneMessage) {
    FileSender sender({.path = write("a", "0123456789"), .chunkSize = 4, .isWhole = true});
    EXPECT_THAT(
        all(sender),
        ElementsAre(
            HasSubstr("file_transfer_start"),
            R"({"action":"file_transfer","fileName":"a","fileData":"MDEyMzQ1Njc4OQ==","isLast":true})"));
}

TEST_F(Files, GoOnInTheMiddleAfterABreak) {
    FileSender sender({.path = write("a", "0123456789"),
                       .name = "b \"c\"",
                       .chunkSize = 4,
                       .withStart = false,
                       .firstChunk = 2});
    EXPECT_THAT(all(sender),
                ElementsAre(R"({"action":"file_chunk","fileName":"b \"c\"","fileData":"ODk=","isLast":true})"));
}

TEST_F(Files, AreCutAfterTheChunksAskedFor) {
    FileSender sender({.path = write("a", "0123456789"), .chunkSize = 4, .cutAfterChunks = 1});
    EXPECT_FALSE(sender.mustCut());
    sender.next();
    EXPECT_FALSE(sender.mustCut());
    sender.next();
    EXPECT_TRUE(sender.mustCut());
}

TEST_F(Files, ThatAreNotThereAreRefused) {
    EXPECT_THROW(FileSender({.path = folder_ / "missing"}), std::runtime_error);
}

TEST_F(Files, ArriveInTheFolderWithTheirSizesCompared) {
    FileReceiver receiver(folder_);
    EXPECT_THAT(receiver.start("in.bin", 6), HasSubstr("6 bytes"));
    EXPECT_EQ(receiver.chunk("in.bin", "Zm9v", false), "");
    EXPECT_THAT(receiver.chunk("in.bin", "YmFy", true), HasSubstr("6 bytes as announced"));
    EXPECT_EQ(read("in.bin"), "foobar");
    EXPECT_EQ(receiver.faults(), 0);
}

TEST_F(Files, ThatArriveShortOrBrokenAreFaults) {
    FileReceiver receiver(folder_);
    receiver.start("in.bin", 7);
    EXPECT_THAT(receiver.chunk("in.bin", "Zm9v", true), HasSubstr("3 bytes, but 7"));
    EXPECT_EQ(receiver.faults(), 1);
    receiver.chunk("in.bin", "Zm9v", true);
    EXPECT_EQ(receiver.faults(), 2);
    receiver.start("in.bin", 3);
    receiver.chunk("in.bin", "Zm9", false);
    EXPECT_EQ(receiver.faults(), 3);
}

TEST_F(Files, CannotLeaveTheFolder) {
    FileReceiver receiver(folder_);
    receiver.start("../../outside", 3);
    receiver.chunk("../../outside", "Zm9v", true);
    EXPECT_EQ(read("outside"), "foo");
}

} // namespace
} // namespace velloway::phone
