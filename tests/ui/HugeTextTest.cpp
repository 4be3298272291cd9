// A phone sends texts of any length; none may hold up a view.
#include "ui/ViewTest.h"

#include <QClipboard>
#include <QElapsedTimer>

#include <cstdio>

namespace velloway::test {
namespace {

constexpr std::size_t size = 10'000'000;

std::string withoutSpaces() {
    return std::string(size, 'w');
}

std::string combiningMarks() {
    std::string marks = "a";
    while (marks.size() < size) {
        marks += "\u0301";
    }
    return marks;
}

/// The slowest of all was a minute and more for a tenth of these texts; what is left is for the copies of the
/// text on its way to the view, on a machine that does other things meanwhile.
constexpr qint64 bound = 3000;

class HugeTextTest : public ViewTest, public testing::WithParamInterface<std::string (*)()> {
protected:
    template <class Change> void expectFast(const char* what, Change change) {
        QElapsedTimer clock;
        clock.start();
        change();
        settle();
        std::printf("%-28s %5lld ms\n", what, static_cast<long long>(clock.elapsed()));
        EXPECT_LT(clock.elapsed(), bound) << what;
    }
    const std::string text = GetParam()();
};

TEST_P(HugeTextTest, Clipboard) {
    open(6);
    expectFast("a clipboard text", [&] { program.historyStore().addClipboard(text); });
    EXPECT_EQ(all("clipboardRow").size(), 1u);
    expectFast("opening the tab again", [&] {
        open(3);
        open(6);
    });
}

TEST_P(HugeTextTest, Notification) {
    open(1);
    expectFast("a notification", [&] {
        program.historyStore().add({.app = text, .title = text, .body = text, .time = 1.7e9, .key = "k"});
    });
    EXPECT_EQ(all("notification").size(), 1u);
}

TEST_P(HugeTextTest, Messages) {
    open(2);
    expectFast("the threads", [&] { state().phone.phoneSmsLog.set({{text, text, text, 1.7e12, 1}}); });
    EXPECT_EQ(all("thread").size(), 1u);
    expectFast("the chat", [&] { click(all("thread").at(0)); });
    EXPECT_EQ(part("messages")->property("count").toInt(), 1);
    expectFast("the SIM", [&] { program.historyStore().availableSIMs.set({{0, text}, {1, text}}); });
}

TEST_P(HugeTextTest, Calls) {
    open(4);
    expectFast("a recent call", [&] { state().phone.phoneCallLog.set({{text, text, 1.7e12, 3, 1}}); });
    EXPECT_EQ(all("recentCall").size(), 1u);
    expectFast("the number", [&] { state().calls.dialpadNumber.set(text); });
}

TEST_P(HugeTextTest, Files) {
    open(5);
    expectFast("a file name", [&] {
        program.historyStore().addFileTransfer({.id = Uuid::random(), .fileName = text, .isCompleted = true});
    });
    EXPECT_EQ(all("transfer").size(), 1u);
}

TEST_P(HugeTextTest, Status) {
    open(0);
    expectFast("the phone's names", [&] {
        program.historyStore().connectedDeviceName.set(text);
        program.historyStore().connectedWifiName.set(text);
    });
}

TEST_P(HugeTextTest, Panel) {
    expectFast("a caller", [&] {
        program.historyStore().incomingCallInfo.set(IncomingCallInfo{text, text});
        drawnPanel();
    });
}

/// Typing and pasting go the same way: the clipboard is the quickest typist.
class HugeFieldTest : public HugeTextTest {
protected:
    void paste(const char* into) {
        QGuiApplication::clipboard()->setText(QString::fromStdString(text));
        part(into)->forceActiveFocus();
        expectFast(into, [&] { QTest::keyClick(&openWindow(), Qt::Key_V, Qt::ControlModifier); });
        EXPECT_GT(part(into)->property("text").toString().size(), 0);
        expectFast("a character more", [&] { QTest::keyClick(&openWindow(), Qt::Key_W); });
    }
};

TEST_P(HugeFieldTest, Search) {
    open(2);
    state().phone.phoneSmsLog.set({{"1", "Ada", "hello", 1.7e12, 1}});
    settle();
    paste("search");
    expectFast("a query", [&] { state().sms.contactQuery.set(text); });
}

TEST_P(HugeFieldTest, Composer) {
    open(2);
    state().sms.activeRecipient.set("1");
    settle();
    paste("composer");
    expectFast("a text for the composer", [&] { state().sms.chatText.set(text); });
}

TEST_P(HugeFieldTest, Reply) {
    open(1);
    program.historyStore().add({.app = "Chat", .title = "Ada", .body = "hello", .time = 1.7e9, .key = "k"});
    settle();
    click("reply");
    paste("replyField");
    expectFast("a text for the reply", [&] { state().notifications.replyText.set(text); });
}

TEST_P(HugeFieldTest, Port) {
    open(0);
    paste("port");
}

TEST_P(HugeFieldTest, Recipient) {
    open(2);
    expectFast("a recipient", [&] { state().sms.activeRecipient.set(text); });
}

INSTANTIATE_TEST_SUITE_P(, HugeFieldTest, testing::Values(&withoutSpaces, &combiningMarks));
INSTANTIATE_TEST_SUITE_P(, HugeTextTest, testing::Values(&withoutSpaces, &combiningMarks));

} // namespace
} // namespace velloway::test
