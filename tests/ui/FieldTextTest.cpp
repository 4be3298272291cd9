#include "bridge/FieldText.h"

#include "fakes/FakeDesktop.h"
#include "ui/ViewTest.h"

namespace velloway::test {
namespace {

const QChar ellipsis(0x2026);

/// The first bytes are letters, the last digits, so that both ends are known by their looks.
std::string longText(std::size_t bytes = 100'000) {
    std::string text(bytes, '-');
    for (std::size_t i = 0; i < bytes / 2; ++i) {
        text[i] = static_cast<char>('a' + i % 26);
        text[bytes - 1 - i] = static_cast<char>('0' + i % 10);
    }
    return text;
}

class FieldTextTest : public testing::Test {
protected:
    QString head() const { return field.shown().left(field.shown().indexOf(ellipsis)); }
    QString tail() const { return field.shown().mid(field.shown().indexOf(ellipsis) + 1); }
    void edit(const QString& shown) { field.edit(shown); }

    Observable<std::string> value;
    FakePasteboard pasteboard;
    FieldText field{value, pasteboard};
};

TEST_F(FieldTextTest, AnOrdinaryTextIsShownAsItIsAndFollowsBothWays) {
    EXPECT_EQ(field.shown(), "");
    value.set("a");
    EXPECT_EQ(field.shown(), "a");
    edit("ab");
    EXPECT_EQ(value.get(), "ab");
    value.set(std::string(FieldText::wholeBytes, 'x'));
    EXPECT_FALSE(field.isShortened());
    EXPECT_EQ(field.shown().size(), static_cast<qsizetype>(FieldText::wholeBytes));
}

TEST_F(FieldTextTest, ALongTextShowsItsEnds) {
    const std::string text = longText(FieldText::wholeBytes + 1);
    value.set(text);
    EXPECT_TRUE(field.isShortened());
    EXPECT_EQ(head().toStdString(), text.substr(0, FieldText::wholeBytes / 4));
    EXPECT_EQ(tail().toStdString(), text.substr(text.size() - FieldText::wholeBytes / 4));
    EXPECT_EQ(value.get(), text);
}

TEST_F(FieldTextTest, NoCharacterIsSplit) {
    for (const char* start : {"", "x", "xx", "xxx"}) {
        std::string text = start;
        while (text.size() < 20'000) {
            text += "\U0001F6B2";
        }
        value.set(text);
        EXPECT_FALSE(field.shown().contains(QChar(0xfffd))) << start;
    }
}

TEST_F(FieldTextTest, WhatIsTypedAtEitherEndGoesIntoTheWholeText) {
    const std::string text = longText();
    value.set(text);
    edit(field.shown() + "!");
    EXPECT_EQ(value.get(), text + "!");
    edit("?" + field.shown());
    EXPECT_EQ(value.get(), "?" + text + "!");
    edit(field.shown().chopped(3));
    EXPECT_EQ(value.get(), "?" + text.substr(0, text.size() - 2));
    edit(field.shown().mid(3));
    EXPECT_EQ(value.get(), text.substr(2, text.size() - 4));
    edit(head() + "\u00e9" + ellipsis + tail());
    edit(head() + ellipsis + "\u00e8" + tail());
    EXPECT_EQ(value.get().size(), text.size());
    EXPECT_EQ(value.get().substr(0, 2), text.substr(2, 2));
    EXPECT_TRUE(field.isShortened());
}

TEST_F(FieldTextTest, TheRestGoesWithItsEllipsis) {
    for (const QString& shown : {QStringLiteral(""), QStringLiteral("new")}) {
        value.set(longText());
        edit(shown);
        EXPECT_EQ(value.get(), shown.toStdString());
        EXPECT_FALSE(field.isShortened());
    }
    value.set(longText());
    edit(head() + tail());
    EXPECT_EQ(value.get(), field.shown().toStdString());
}

TEST_F(FieldTextTest, UndoingItBringsTheRestBack) {
    const std::string text = longText();
    value.set(text);
    const QString shown = field.shown();
    edit(QString());
    edit(shown);
    EXPECT_EQ(value.get(), text);
    EXPECT_TRUE(field.isShortened());
    edit(shown + "!");
    EXPECT_EQ(value.get(), text + "!");
}

TEST_F(FieldTextTest, AnEllipsisOfTheUserIsNoRest) {
    edit(QStringLiteral("a") + ellipsis);
    EXPECT_EQ(value.get(), "a\u2026");
    EXPECT_FALSE(field.isShortened());
}

TEST_F(FieldTextTest, APartIsCopiedWithWhatItStandsFor) {
    const std::string text = longText();
    value.set(text);
    const int end = static_cast<int>(field.shown().size());
    field.copy(0, end);
    EXPECT_EQ(pasteboard.content, text);
    field.copy(1, end - 1);
    EXPECT_EQ(pasteboard.content, text.substr(1, text.size() - 2));
    field.copy(2, 5);
    EXPECT_EQ(pasteboard.content, text.substr(2, 3));
    field.copy(end - 5, end - 2);
    EXPECT_EQ(pasteboard.content, text.substr(text.size() - 5, 3));
}

TEST_F(FieldTextTest, LineBreaksAreFoundWhereverTheyAre) {
    for (const char* mark : {"\n", "\r", "\u2028", "\u2029"}) {
        std::string text = longText();
        value.set(text);
        EXPECT_FALSE(field.hasLineBreaks());
        text.insert(50'000, mark);
        value.set(text);
        EXPECT_TRUE(field.hasLineBreaks());
    }
}

TEST_F(FieldTextTest, WhatIsTypedWithoutEndIsShortenedAtLast) {
    edit(QString(10'000, 'x'));
    EXPECT_FALSE(field.isShortened());
    edit(QString(30'000, 'x'));
    EXPECT_TRUE(field.isShortened());
    EXPECT_EQ(value.get(), std::string(30'000, 'x'));
}

TEST_F(FieldTextTest, AClipboardThatAnswersWhenTheTextHasGoneIsIgnored) {
    pasteboard.isSlow = true;
    pasteboard.content = "text";
    QObject view;
    auto gone = std::make_unique<FieldText>(value, pasteboard);
    gone->pasteClipboard(&view);
    gone.reset();
    pasteboard.answerOpen();
    EXPECT_EQ(value.get(), "");
}

/// The same by the keyboard, in the composer.
class LongFieldTest : public ViewTest {
protected:
    LongFieldTest() {
        open(2);
        state().sms.activeRecipient.set("1");
        settle();
        part("composer")->forceActiveFocus();
    }
    void control(Qt::Key pressed) { key(pressed, Qt::ControlModifier); }
    std::string typed() { return state().sms.chatText.get(); }
};

TEST_F(LongFieldTest, ALongTextIsPastedTypedOnAndSentWhole) {
    const std::string text = longText();
    on.pasteboard.content = text;
    control(Qt::Key_V);
    type("!");
    EXPECT_EQ(typed(), text + "!");
    EXPECT_LT(ViewHarness::text("composer").size(), 10'000);
    takeSent();
    key(Qt::Key_Return);
    EXPECT_THAT(takeSent(),
                ElementsAre(R"({"action":"send_sms","number":"1","body":")" + text + R"(!","simSlot":0})"));
    EXPECT_EQ(ViewHarness::text("composer"), "");
}

TEST_F(LongFieldTest, ALongTextIsPastedAtTheCursor) {
    type("ab");
    key(Qt::Key_Left);
    on.pasteboard.content = longText();
    control(Qt::Key_V);
    EXPECT_EQ(typed(), "a" + longText() + "b");
}

TEST_F(LongFieldTest, ItIsCopiedCutAndBroughtBack) {
    const std::string text = longText();
    state().sms.chatText.set(text);
    control(Qt::Key_A);
    control(Qt::Key_C);
    EXPECT_EQ(on.pasteboard.content, text);
    on.pasteboard.content.reset();
    control(Qt::Key_X);
    EXPECT_EQ(on.pasteboard.content, text);
    EXPECT_EQ(typed(), "");
    control(Qt::Key_Z);
    EXPECT_EQ(typed(), text);
}

TEST_F(LongFieldTest, AShortTextIsPastedAtTheCursorAndCanBeUndone) {
    type("ac");
    key(Qt::Key_Left);
    on.pasteboard.content = "b";
    control(Qt::Key_V);
    EXPECT_EQ(typed(), "abc");
    EXPECT_EQ(part("composer")->property("cursorPosition").toInt(), 2);
    control(Qt::Key_Z);
    EXPECT_EQ(typed(), "ac");
    control(Qt::Key_A);
    control(Qt::Key_V);
    EXPECT_EQ(typed(), "b");
}

TEST_F(LongFieldTest, OnlyTheFieldThatAskedTakesTheText) {
    on.pasteboard.content = "found";
    on.pasteboard.isSlow = true;
    part("search")->forceActiveFocus();
    control(Qt::Key_V);
    part("composer")->forceActiveFocus();
    on.pasteboard.answerOpen();
    EXPECT_EQ(state().sms.contactQuery.get(), "found");
    EXPECT_EQ(typed(), "");
}

TEST_F(LongFieldTest, AFieldThatHasGoneLeavesNothingToTheNextOneOfItsText) {
    open(1);
    for (const char* person : {"Ada", "Bob"}) {
        program.historyStore().add(
            {.app = "Chat", .title = person, .body = "hello", .time = 1.7e9, .key = person});
    }
    settle();
    for (const std::string& text : {std::string("found"), longText()}) {
        on.pasteboard.content = text;
        on.pasteboard.isSlow = true;
        state().notifications.replyText.set("");
        click(all("reply").at(0));
        control(Qt::Key_V);
        key(Qt::Key_Escape);
        click(all("reply").at(1));
        on.pasteboard.answerOpen();
        settle();
        EXPECT_EQ(state().notifications.replyText.get(), "");
        on.pasteboard.isSlow = false;
        control(Qt::Key_V);
        EXPECT_TRUE(state().notifications.replyText.get() == text);
        key(Qt::Key_Escape);
    }
}

TEST_F(LongFieldTest, TypingGoesOnWhileTheOwnerOfTheClipboardIsSilent) {
    on.pasteboard.content = "2";
    on.pasteboard.isSlow = true;
    type("1");
    control(Qt::Key_V);
    control(Qt::Key_V);
    type("3");
    EXPECT_EQ(typed(), "13");
    on.pasteboard.answerOpen();
    EXPECT_EQ(typed(), "1322");
    on.pasteboard.isSlow = false;
    on.pasteboard.content = "";
    control(Qt::Key_V);
    on.pasteboard.content.reset();
    control(Qt::Key_V);
    EXPECT_EQ(typed(), "1322");
}

TEST_F(LongFieldTest, ALongTextTakesThePlaceOfASelection) {
    on.pasteboard.content = longText();
    type("before after");
    QMetaObject::invokeMethod(part("composer"), "select", Q_ARG(int, 7), Q_ARG(int, 9));
    control(Qt::Key_V);
    EXPECT_TRUE(typed() == "before " + longText() + "ter");
    type("!");
    EXPECT_TRUE(typed() == "before " + longText() + "!ter");
    on.pasteboard.content = "more";
    control(Qt::Key_A);
    control(Qt::Key_V);
    EXPECT_EQ(typed(), "more");
    EXPECT_EQ(part("composer")->property("cursorPosition").toInt(), 4);
}

TEST_F(LongFieldTest, TheMiddleButtonPastesTheSelectedTextWhereItIsPressed) {
    QQuickItem* const field = part("composer");
    on.pasteboard.content = "clipboard";
    const auto pressMiddle = [&](double x) {
        const QPointF at = field->mapToScene({x, field->height() / 2});
        QTest::mouseClick(&openWindow(), Qt::MiddleButton, {}, at.toPoint());
        settle();
    };
    type("ab");
    control(Qt::Key_A);
    part("search")->forceActiveFocus();
    pressMiddle(field->width() - 10);
    EXPECT_EQ(typed(), "ab") << "nothing is selected";
    on.pasteboard.selection = "c";
    pressMiddle(field->width() - 10);
    EXPECT_EQ(typed(), "abc");
    EXPECT_TRUE(field->hasActiveFocus());
    on.pasteboard.selection = longText();
    pressMiddle(1);
    EXPECT_TRUE(typed() == longText() + "abc");
    EXPECT_LT(ViewHarness::text("composer").size(), 10'000);
}

TEST_F(LongFieldTest, AKeyPastesTheSelectedTextToo) {
    on.pasteboard.content = "clipboard";
    on.pasteboard.selection = "selected";
    key(Qt::Key_Insert, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(typed(), "selected");
    key(Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(typed(), "selectedclipboard");
}

class PortFieldTest : public ViewTest {
protected:
    PortFieldTest() {
        open(0);
        part("port")->forceActiveFocus();
        key(Qt::Key_A, Qt::ControlModifier);
    }
    void paste(const std::string& text) {
        on.pasteboard.content = text;
        key(Qt::Key_V, Qt::ControlModifier);
    }
};

TEST_F(PortFieldTest, APortIsPastedWithoutWaitingForTheOwnerOfTheClipboard) {
    on.pasteboard.isSlow = true;
    paste("9000");
    EXPECT_EQ(text("port"), "8765");
    on.pasteboard.answerOpen();
    EXPECT_EQ(text("port"), "9000");
    EXPECT_EQ(state().settings.port.get(), 8765);
    key(Qt::Key_Return);
    EXPECT_EQ(state().settings.port.get(), 9000);
}

TEST_F(PortFieldTest, ALongTextIsShownByItsEndsAndIsNoPort) {
    paste(longText());
    EXPECT_TRUE(text("port").contains(ellipsis));
    EXPECT_LT(text("port").size(), 10'000);
    key(Qt::Key_Return);
    EXPECT_EQ(text("port"), "8765");
    EXPECT_EQ(state().settings.port.get(), 8765);
}

TEST_F(LongFieldTest, NothingSelectedIsNotCopied) {
    state().sms.chatText.set(longText());
    part("composer")->forceActiveFocus();
    on.pasteboard.content = "before";
    control(Qt::Key_C);
    control(Qt::Key_X);
    EXPECT_EQ(on.pasteboard.content, "before");
    EXPECT_EQ(typed(), longText());
}

} // namespace
} // namespace velloway::test
