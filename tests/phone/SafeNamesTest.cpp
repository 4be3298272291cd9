#include "phone/FileReceiver.h"
#include "phone/Numbers.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace velloway::phone {
namespace {

TEST(SafeFileName, KeepsNothingThatLeadsElsewhereOrThatAPhoneRefuses) {
    struct {
        const char* name;
        const char* safe;
    } const names[] = {{"plan.pdf", "plan.pdf"},
                       {"Grüße 🚲.txt", "Grüße 🚲.txt"},
                       {"../../etc/passwd", "passwd"},
                       {"c:\\a\\b.txt", "b.txt"},
                       {"..", "_.."},
                       {".profile", "_.profile"},
                       {"-rf", "_-rf"},
                       {"", "_"},
                       {"a/", "_"},
                       {"a\nb\"c'd`e$f*g:h<i>j?k|l", "a_b_c_d_e_f_g_h_i_j_k_l"}};
    for (const auto& each : names) {
        EXPECT_EQ(safeFileName(each.name), each.safe) << each.name;
    }
}

TEST(SafeFileName, IsCutBetweenCharactersAndKeepsItsExtension) {
    std::string longName;
    for (int count = 0; count < 150; ++count) {
        longName += "ü";
    }
    const std::string safe = safeFileName(longName + ".tar");
    EXPECT_LE(safe.size(), 200u);
    EXPECT_EQ(safe.substr(safe.size() - 6), "ü.tar");
}

class KeptFiles : public testing::Test {
protected:
    KeptFiles() {
        char pattern[] = "/tmp/velloway-kept-XXXXXX";
        folder = mkdtemp(pattern);
    }
    ~KeptFiles() override { std::filesystem::remove_all(folder); }
    std::string read(const std::string& name) const {
        std::ifstream file(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::size_t count() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()));
    }

    std::filesystem::path folder;
};

TEST_F(KeptFiles, ArePutBesideWhatIsThere) {
    FileReceiver receiver(folder, FileReceiver::Present::isKept);
    for (int round = 0; round < 3; ++round) {
        receiver.start("a.txt", 3);
        receiver.chunk("a.txt", round == 0 ? "Zm9v" : "YmFy", true);
    }
    EXPECT_EQ(read("a.txt"), "foo");
    EXPECT_EQ(read("a (3).txt"), "bar");
    EXPECT_EQ(receiver.takeReceived(), (folder / "a (3).txt").string());
    EXPECT_EQ(receiver.takeReceived(), std::nullopt);
}

TEST_F(KeptFiles, AreTakenBackWhenTheLinkGoesOrTheFileBeginsAgain) {
    FileReceiver receiver(folder, FileReceiver::Present::isKept);
    receiver.start("a.txt", 6);
    receiver.chunk("a.txt", "Zm9v", false);
    receiver.start("a.txt", 6);
    EXPECT_EQ(count(), 1u);
    EXPECT_EQ(receiver.giveUp().size(), 1u);
    EXPECT_EQ(count(), 0u);
    EXPECT_NE(receiver.chunk("a.txt", "YmFy", false), "");
    EXPECT_EQ(receiver.chunk("a.txt", "YmFy", true), "");
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(receiver.takeReceived(), std::nullopt);
}

TEST_F(KeptFiles, BeginWithAChunkOnlyAfterAStartThatCouldNotBeRead) {
    FileReceiver receiver(folder, FileReceiver::Present::isKept);
    receiver.chunk("a \"b\"", "Zm9v", true);
    EXPECT_EQ(count(), 0u);
    receiver.expectUnannounced();
    receiver.chunk("a \"b\"", "Zm9v", false);
    receiver.chunk("a \"b\"", "YmFy", true);
    EXPECT_EQ(read("a _b_"), "foobar");
}

TEST(Numbers, AreReadWholeOrNotAtAll) {
    EXPECT_EQ(readNumber("-0.5"), -0.5);
    EXPECT_EQ(readNumber("2e3"), 2000);
    for (const char* text : {"", " 1", "1 ", "+1", "0x10", "inf", "nan", "1e999", "1,5", "--1", "e"}) {
        EXPECT_EQ(readNumber(text), std::nullopt) << text;
    }
}

} // namespace
} // namespace velloway::phone
