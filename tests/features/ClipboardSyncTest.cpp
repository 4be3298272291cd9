#include "features/ClipboardSync.h"
#include "features/FeatureTest.h"

namespace velloway::test {

namespace {

class ClipboardSyncTest : public FeatureTest {
protected:
    ClipboardSyncTest() {
        host.pasteboard.content = "before";
        subscription_ = store->clipboardHistory.observe(
            [this](const auto& rows) { host.journal.note("row " + rows.front().text); });
    }

    void receive(std::string text) {
        sync->receive(std::move(text));
        host.main.runAll();
    }

    std::vector<std::string> history() const {
        std::vector<std::string> texts;
        for (const ClipboardRecord& row : store->clipboardHistory.get()) {
            texts.push_back(row.text);
        }
        return texts;
    }

    const std::pair<std::string, std::string> banner{"Clipboard Synced",
                                                     "Text from Android copied to your Mac clipboard."};
    std::optional<ClipboardSync> sync{std::in_place, host.main, link, host.pasteboard, notificationManager};

private:
    Subscription subscription_;
};

} // namespace

TEST_F(ClipboardSyncTest, WritesThePasteboardThenTheRowThenTheBanner) {
    sync->receive("hello");
    EXPECT_TRUE(host.journal.entries().empty());
    EXPECT_EQ(host.pasteboard.content, "before");
    host.main.runAll();
    EXPECT_EQ(host.pasteboard.content, "hello");
    EXPECT_EQ(banners(), (Banners{banner}));
    const std::string added = "add " + host.notificationCenter.requests[0].identifier;
    EXPECT_EQ(host.journal.take(), (Entries{"pasteboard clear", "pasteboard set hello", "row hello", added}));
}

TEST_F(ClipboardSyncTest, TakesAnEmptyTextLikeAnyOther) {
    receive("");
    EXPECT_EQ(host.pasteboard.content, "");
    EXPECT_EQ(history(), (Entries{""}));
    EXPECT_EQ(banners(), (Banners{banner}));
}

TEST_F(ClipboardSyncTest, TakesTextOfWhiteSpaceAloneAsItIs) {
    receive(" \n\t");
    EXPECT_EQ(host.pasteboard.content, " \n\t");
    EXPECT_EQ(history(), (Entries{" \n\t"}));
    std::vector<std::optional<std::string>> sent;
    readTextToSend(host.pasteboard, [&](auto text) { sent.push_back(std::move(text)); });
    EXPECT_EQ(sent, (std::vector<std::optional<std::string>>{" \n\t"}));
}

TEST_F(ClipboardSyncTest, TakesATextThatIsAlreadyOnThePasteboard) {
    receive("before");
    receive("before");
    EXPECT_EQ(history(), (Entries{"before", "before"}));
    EXPECT_EQ(banners(), (Banners{banner, banner}));
}

TEST_F(ClipboardSyncTest, LeavesTheLaterOfTwoTexts) {
    sync->receive("one");
    sync->receive("two");
    host.main.runAll();
    EXPECT_EQ(host.pasteboard.content, "two");
    EXPECT_EQ(history(), (Entries{"two", "one"}));
    EXPECT_EQ(banners(), (Banners{banner, banner}));
}

TEST_F(ClipboardSyncTest, StillWritesAndShowsWhenThereIsNoStore) {
    sync->receive("hello");
    store.reset();
    host.main.runAll();
    EXPECT_EQ(host.pasteboard.content, "hello");
    EXPECT_EQ(banners(), (Banners{banner}));
}

TEST_F(ClipboardSyncTest, FinishesWhatItBeganWhenTheServerGoes) {
    sync->receive("late");
    sync.reset();
    link.reset();
    host.main.runAll();
    EXPECT_EQ(host.pasteboard.content, "late");
    EXPECT_EQ(history(), (Entries{"late"}));
    EXPECT_EQ(banners(), (Banners{banner}));
}

TEST_F(ClipboardSyncTest, PutsTheBannerRightWhenTheDesktopRefusesTheText) {
    host.pasteboard.isLocked = true;
    receive("hello");
    EXPECT_EQ(history(), (Entries{"hello"}));
    EXPECT_EQ(banners(),
              (Banners{banner,
                       {"Clipboard Not Synced",
                        "This desktop did not accept the text from Android. It is in the Clipboard tab."}}));
}

TEST_F(ClipboardSyncTest, SendsOnlyPlainTextThatIsNotEmpty) {
    const auto textToSend = [this](std::optional<std::string> content) {
        host.pasteboard.content = std::move(content);
        std::vector<std::optional<std::string>> answers;
        readTextToSend(host.pasteboard, [&](auto text) { answers.push_back(std::move(text)); });
        EXPECT_EQ(answers.size(), 1u);
        return answers.at(0);
    };
    EXPECT_EQ(textToSend("to the phone"), "to the phone");
    EXPECT_EQ(textToSend(""), std::nullopt);
    EXPECT_EQ(textToSend(std::nullopt), std::nullopt);
    EXPECT_TRUE(history().empty());
    EXPECT_TRUE(banners().empty());
}

} // namespace velloway::test
