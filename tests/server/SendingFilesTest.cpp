#include "fakes/ServerHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;

constexpr std::size_t mebibyte = 1 << 20;

class SendingFilesTest : public testing::Test, public ServerHarness {
protected:
    SendingFilesTest() { listen(); }

    std::filesystem::path write(const std::string& name, std::size_t size) {
        std::string bytes(size, '\0');
        for (std::size_t at = 0; at < size; at += 97) {
            bytes[at] = static_cast<char>(at / 97 + at / mebibyte);
        }
        return on.files.put("/home/me/" + name, std::move(bytes));
    }
    void send(const std::filesystem::path& file) {
        server->sendFile(file);
        on.drain();
    }
    /// What each message is, without what is in it.
    static std::vector<std::string> kinds(const FakeConnection& phone) {
        std::vector<std::string> all;
        for (const auto& message : phone.sent) {
            const std::size_t begin = message.text.find(":\"") + 2;
            all.push_back(message.text.substr(begin, message.text.find('"', begin) - begin) +
                          (message.text.ends_with("\"isLast\":true}") ? ", last" : ""));
        }
        return all;
    }
    void takeAll(FakeConnection& phone) {
        while (!phone.untaken.empty()) {
            phone.takeNext();
            on.drain();
        }
    }
    std::string lastBanner() const { return on.notificationCenter.requests.back().content.title; }
};

TEST_F(SendingFilesTest, APhoneThatTakesNothingGetsTheSameMessagesLater) {
    const auto quick = connect("10.0.0.1");
    const auto slow = connect("10.0.0.2");
    slow->takesSeries = false;
    send(write("a.bin", 20 * mebibyte));
    EXPECT_EQ(lastBanner(), "File Sent");
    EXPECT_EQ(quick->sent.size(), 21u);
    EXPECT_EQ(slow->untaken.size(), 20u) << "the start has come";
    takeAll(*slow);
    EXPECT_TRUE(slow->sent == quick->sent);
    EXPECT_EQ(kinds(*slow).front(), "file_transfer_start");
    EXPECT_EQ(kinds(*slow).back(), "file_chunk, last");
}

TEST_F(SendingFilesTest, OtherMessagesKeepTheirPlaceBehindAFileThatNobodyHasTaken) {
    const auto phone = connect();
    phone->takesSeries = false;
    server->answerCall();
    send(write("a.bin", 2 * mebibyte));
    server->findDevice();
    on.drain();
    takeAll(*phone);
    EXPECT_THAT(kinds(*phone), ElementsAre("answer_call", "file_transfer_start", "file_chunk",
                                           "file_chunk, last", "find_device"));
}

TEST_F(SendingFilesTest, APhoneThatConnectsLaterGetsOnlyWhatIsReadAfterwards) {
    send(write("a.bin", 2 * mebibyte));
    EXPECT_EQ(lastBanner(), "File Sent") << "without any phone";
    const auto phone = connect();
    EXPECT_TRUE(phone->sent.empty());
}

TEST_F(SendingFilesTest, AFileThatChangesEndsForThePhonesThatAreBehind) {
    const auto quick = connect("10.0.0.1");
    const auto slow = connect("10.0.0.2");
    slow->takesSeries = false;
    const auto file = write("a.bin", 20 * mebibyte);
    std::string changed = on.files.content(file);
    send(file);
    changed[5 * mebibyte] = '!';
    on.files.put(file, std::move(changed));
    takeAll(*slow);
    ASSERT_EQ(slow->sent.size(), quick->sent.size());
    for (std::size_t place = 0; place < slow->sent.size(); ++place) {
        // The start, and the five chunks before the change.
        EXPECT_TRUE(place < 6 ? slow->sent[place] == quick->sent[place] : slow->sent[place].text.empty())
            << place;
    }
    ASSERT_TRUE(slow->seriesError);
    EXPECT_EQ(slow->seriesError->localizedDescription, "The file has changed since it was read");
}

TEST_F(SendingFilesTest, AChunkThatWasNotSentIsLogged) {
    const auto phone = connect();
    send(write("a.bin", 10));
    on.log.take();
    phone->completions.back()(NetworkError{"The file has changed since it was read", ""});
    EXPECT_THAT(on.log.take(), ElementsAre("Send error: The file has changed since it was read"));
}

} // namespace
} // namespace velloway::test
