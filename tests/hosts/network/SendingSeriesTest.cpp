#include "fakes/FakeTextSeries.h"
#include "hosts/network/HostileFixture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

namespace velloway::test {
namespace {

constexpr std::size_t textSize = 1'400'000;

std::string largeText(std::uint64_t index) {
    std::string text(textSize, 'a');
    for (std::size_t at = 0; at < text.size(); at += 11) {
        text[at] = static_cast<char>('a' + (at + index) % 26);
    }
    return text;
}

/// Series of large texts for phones that read slowly or not at all.
class SendingSeriesTest : public HostileFixture<testing::Test> {
protected:
    RawPhone connectWithSmallBuffer() {
        RawPhone phone(host->port);
        phone.setReceiveBuffer(65536);
        EXPECT_TRUE(phone.shakeHands());
        EXPECT_TRUE(waitUntil([&] { return host->ready == 2; }));
        return phone;
    }
    /// Sends more than the system takes, until a text has left in part.
    void fill(std::uint64_t count) {
        host->sendToLatest(series, count);
        EXPECT_TRUE(waitUntil([&] {
            const int made = series->madeCount;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            return made > 0 && series->madeCount == made && series->heldCount() == 0;
        })) << "texts are still made or held: "
            << series->heldCount();
        EXPECT_LT(host->sent, static_cast<int>(count));
    }
    std::shared_ptr<FakeTextSeries> make(FakeTextSeries::Text text) {
        return std::make_shared<FakeTextSeries>(host->queue, std::move(text));
    }
    void SetUp() override {
        HostileFixture::SetUp();
        series = make(largeText);
    }

    std::shared_ptr<FakeTextSeries> series;
};

TEST_F(SendingSeriesTest, APhoneThatNeverReadsCostsNoMemory) {
    constexpr int count = 1'000'000;
    RawPhone phone = connectWithSmallBuffer();
    fill(count);
    if (!VELLOWAY_MEMORY_IS_INSTRUMENTED) {
        EXPECT_LT(Memory::now().resident - memory.resident, 16 << 20);
    }
    EXPECT_LT(series->madeCount, 32);
    EXPECT_EQ(host->failures, 0);
    phone.reset();
    EXPECT_TRUE(waitUntil([&] { return host->failures == 1; }));
    EXPECT_TRUE(waitUntil([&] { return host->sent + host->unsent == count; })) << "every send is answered";
}

TEST_F(SendingSeriesTest, APhoneThatReadsAgainGetsEverythingInOrder) {
    constexpr std::uint64_t count = 20;
    RawPhone phone = connectWithSmallBuffer();
    fill(count);
    host->sendToLatest(std::make_shared<const std::string>("after"));
    for (std::uint64_t index = 0; index < count; ++index) {
        const auto text = phone.readFrame();
        ASSERT_TRUE(text && text->payload == largeText(index)) << index;
    }
    EXPECT_EQ(phone.nextText(), "after");
    EXPECT_TRUE(waitUntil([&] { return host->sent == static_cast<int>(count) + 1; }));
}

TEST_F(SendingSeriesTest, APingBetweenPartsOfATextIsAnsweredAfterIt) {
    RawPhone phone = connectWithSmallBuffer();
    fill(20);
    phone.write(frame("p", {.opcode = 9}));
    std::uint64_t texts = 0;
    for (auto next = phone.readFrame(); next && next->opcode != 10; next = phone.readFrame()) {
        ASSERT_TRUE(next->payload == largeText(texts)) << texts;
        ++texts;
    }
    EXPECT_LT(texts, 20u) << "before the series has ended";
    for (; texts < 20; ++texts) {
        ASSERT_TRUE(phone.nextText() == largeText(texts)) << texts;
    }
}

TEST_F(SendingSeriesTest, ATextThatCannotBeMadeAgainEndsTheConnectionAndIsNeverWhole) {
    RawPhone phone = connectWithSmallBuffer();
    fill(20);
    series->isBroken = true;
    const auto whole = [&] {
        std::uint64_t count = 0;
        for (auto next = phone.readFrame(); next; next = phone.readFrame()) {
            EXPECT_TRUE(next->payload == largeText(count));
            ++count;
        }
        return count;
    }();
    EXPECT_EQ(static_cast<int>(whole), host->sent);
    EXPECT_TRUE(waitUntil([&] { return host->failures == 1; }));
    EXPECT_EQ(host->lastFailure(), "Input/output error");
    EXPECT_TRUE(waitUntil([&] { return host->sent + host->unsent == 20; }));
}

TEST_F(SendingSeriesTest, ATextThatIsLongerTheSecondTimeEndsTheConnection) {
    std::atomic<bool> isLonger = false;
    series = make([&](std::uint64_t index) { return largeText(index) + (isLonger ? "x" : ""); });
    RawPhone phone = connectWithSmallBuffer();
    fill(20);
    isLonger = true;
    EXPECT_TRUE(phone.waitForEnd());
    EXPECT_TRUE(waitUntil([&] { return host->failures == 1; }));
    EXPECT_EQ(host->lastFailure(), "Input/output error");
}

TEST_F(SendingSeriesTest, ACancelBetweenPartsOfATextFinishesTheTextFirst) {
    RawPhone phone = connectWithSmallBuffer();
    fill(20);
    host->cancelLatest();
    std::uint64_t texts = 0;
    auto next = phone.readFrame();
    for (; next && next->opcode == 1; next = phone.readFrame()) {
        ASSERT_TRUE(next->payload == largeText(texts)) << texts;
        ++texts;
    }
    ASSERT_TRUE(next);
    EXPECT_EQ(next->closeCode(), 1001);
    EXPECT_TRUE(waitUntil([&] { return host->sent + host->unsent == 20; }));
    EXPECT_TRUE(waitUntil([&] { return series.use_count() == 1; })) << "the series was let go";
}

TEST_F(SendingSeriesTest, ACancelBetweenPartsOfATextDoesNotWaitForAPhoneThatNeverReads) {
    RawPhone phone = connectWithSmallBuffer();
    fill(20);
    host->cancelLatest();
    EXPECT_TRUE(waitUntil([&] { return openDescriptors() <= descriptors + 1; }));
    EXPECT_TRUE(waitUntil([&] { return series.use_count() == 1; })) << "the series was let go";
}

TEST_F(SendingSeriesTest, AFullQueueOfOtherTextsEndsTheConnectionWithASeriesInFront) {
    bystander.reset();
    host.reset();
    serve({.queuedBytes = 16u << 20});
    series = make(largeText);
    RawPhone phone = connectWithSmallBuffer();
    fill(20);
    host->sendToLatest(std::make_shared<const std::string>(1u << 20, 't'), 20);
    EXPECT_TRUE(waitUntil([&] { return host->failures == 1; }));
    EXPECT_EQ(host->lastFailure(), "No buffer space available");
    EXPECT_TRUE(waitUntil([&] { return host->sent + host->unsent == 40; })) << "every send is answered";
}

TEST_F(SendingSeriesTest, TheEndOfTheQueueInTheMiddleOfATextLetsTheSeriesGo) {
    RawPhone phone = connectWithSmallBuffer();
    fill(20);
    std::weak_ptr<FakeTextSeries> watch = series;
    series.reset();
    phone.reset();
    EXPECT_TRUE(waitUntil([&] { return watch.expired(); }));
}

} // namespace
} // namespace velloway::test
