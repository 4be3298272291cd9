#include "tabs/TabHarness.h"
#include "tabs/clipboard/ClipboardTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ClipboardTabTest : public testing::Test, protected TabHarness {};

TEST_F(ClipboardTabTest, RowsShowTheWholeTextAndWhenItCame) {
    const std::string text = "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11";
    store.addClipboard(text);
    const auto rows = view->clipboard.rows.get();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].id, store.clipboardHistory.get()[0].id);
    EXPECT_EQ(rows[0].text, text);
    EXPECT_EQ(rows[0].date, "15 Nov 2023, 03:43");
}

TEST_F(ClipboardTabTest, RowsAndTheClearButtonFollowTheStore) {
    int redraws = 0;
    const auto observer = view->clipboard.rows.observe([&] { ++redraws; });
    EXPECT_FALSE(view->clipboard.showsClear());
    store.addClipboard("a");
    store.addClipboard("b");
    EXPECT_EQ(view->clipboard.rows.get().at(0).text, "b");
    EXPECT_TRUE(view->clipboard.showsClear());
    view->clipboard.clearClipboard();
    EXPECT_FALSE(view->clipboard.showsClear());
    EXPECT_EQ(redraws, 3);
}

TEST_F(ClipboardTabTest, TheCurrentClipboardIsSent) {
    on.pasteboard.content = "a/b \"c\"";
    view->clipboard.sendCurrentClipboard();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"clipboard","text":"a\/b \"c\""})"));
}

TEST_F(ClipboardTabTest, WithoutATextNothingIsSent) {
    view->clipboard.sendCurrentClipboard();
    on.pasteboard.content = "";
    view->clipboard.sendCurrentClipboard();
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(ClipboardTabTest, CopyingClearsThePasteboardFirst) {
    store.addClipboard("kept");
    on.journal.take();
    view->clipboard.copyToClipboard(store.clipboardHistory.get()[0].id);
    EXPECT_THAT(on.journal.entries(), ElementsAre("pasteboard clear", "pasteboard set kept"));
    EXPECT_EQ(store.clipboardHistory.get().size(), 1u);
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(ClipboardTabTest, CopyingARowThatHasGoneLeavesThePasteboard) {
    on.pasteboard.content = "mine";
    view->clipboard.copyToClipboard(Uuid::random());
    EXPECT_EQ(on.pasteboard.content, "mine");
}

TEST(ClipboardTextsTest, AreExact) {
    EXPECT_EQ(textOf(clipboardTexts, "description"), "Manage and sync clipboard content between your devices.");
    EXPECT_EQ(textOf(clipboardTexts, "send"), "Send Current Mac Clipboard");
    EXPECT_EQ(textOf(clipboardTexts, "empty"), "No received items yet");
    EXPECT_EQ(textOf(clipboardTexts, "copyTooltip"), "Copy to Mac Clipboard");
}

} // namespace
} // namespace velloway::test
