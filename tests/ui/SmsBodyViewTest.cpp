#include "ui/ViewTest.h"

#include <QClipboard>

namespace velloway::test {
namespace {

class SmsBodyTest : public ViewTest {
protected:
    SmsBodyTest() { open(2); }
    QQuickItem* show(const char* body) {
        state().phone.phoneSmsLog.set({{"1", std::nullopt, body, 1.7e12, 1}});
        state().sms.activeRecipient.set("1");
        settle();
        return part("body");
    }
    /// Of the character at a position in the text.
    static QPoint placeOf(QQuickItem* body, int position) {
        QRectF place;
        QMetaObject::invokeMethod(body, "positionToRectangle", Q_RETURN_ARG(QRectF, place),
                                  Q_ARG(int, position));
        return body->mapToScene(place.center() + QPointF(2, 0)).toPoint();
    }
    void clickOn(QQuickItem* body, int position, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(body->window(), button, {}, placeOf(body, position));
        settle();
    }
};

TEST_F(SmsBodyTest, AClickOnALinkOpensItAndAClickBesideItDoesNot) {
    QQuickItem* body = show("see <b> & https://a.example/x?y=1&z=2, please");
    clickOn(body, 2);
    EXPECT_THAT(on.workspace.opened, IsEmpty());
    clickOn(body, 14);
    EXPECT_THAT(on.workspace.opened, ElementsAre("https://a.example/x?y=1&z=2"));
    body->forceActiveFocus();
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "see <b> & https://a.example/x?y=1&z=2, please");
}

TEST_F(SmsBodyTest, ThePointerIsAHandOnALinkAndAnywhereElseNot) {
    QQuickItem* body = show("see https://a.example/ and on");
    const auto pointerOn = [&](int position, Qt::CursorShape expected) {
        QTest::mouseMove(body->window(), placeOf(body, position));
        return wait([&] { return body->window()->cursor().shape() == expected; });
    };
    EXPECT_TRUE(pointerOn(8, Qt::PointingHandCursor));
    EXPECT_TRUE(pointerOn(1, Qt::IBeamCursor));
    EXPECT_TRUE(pointerOn(12, Qt::PointingHandCursor));
    QTest::mouseMove(body->window(), {2, 2});
    EXPECT_TRUE(wait([&] { return body->window()->cursor().shape() == Qt::ArrowCursor; }));
}

TEST_F(SmsBodyTest, ALinkStandsOutFromItsGround) {
    for (const int type : {1, 2}) {
        state().phone.phoneSmsLog.set({{"1", std::nullopt, "https://a.example/", 1.7e12, type}});
        state().sms.activeRecipient.set("1");
        settle();
        const bool isOutgoing = type == 2;
        const QString markup = part("body")->property("text").toString();
        EXPECT_EQ(markup.contains("color:#ffffff"), isOutgoing) << markup.toStdString();
    }
}

TEST_F(SmsBodyTest, OfALongMessageWhatIsSelectedIsCopiedAndNoMore) {
    QQuickItem* body = show(std::string(100'000, 'w').c_str());
    QMetaObject::invokeMethod(body, "select", Q_ARG(int, 0), Q_ARG(int, 10));
    body->forceActiveFocus();
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "wwwwwwwwww");
}

TEST_F(SmsBodyTest, TextThatLooksLikeMarkupIsShownAsItIs) {
    QQuickItem* body = show("<a href=\"https://evil.example\">https://good.example</a> a  b\nc");
    body->forceActiveFocus();
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(
        body->property("selectedText").toString().replace(QChar(0x2028), '\n').replace(QChar(0x2029), '\n'),
        "<a href=\"https://evil.example\">https://good.example</a> a  b\nc");
    EXPECT_GT(body->property("contentHeight").toDouble(), 2 * 13) << "two lines";
}

TEST_F(SmsBodyTest, TheContextMenuCopiesTheSelectionOrElseEverything) {
    QQuickItem* body = show("one two");
    const auto copyByMenu = [&] {
        clickOn(body, 1, Qt::RightButton);
        key(Qt::Key_Down);
        key(Qt::Key_Return);
        return QGuiApplication::clipboard()->text();
    };
    EXPECT_EQ(copyByMenu(), "one two");
    QMetaObject::invokeMethod(body, "select", Q_ARG(int, 4), Q_ARG(int, 7));
    EXPECT_EQ(copyByMenu(), "two");
}

TEST_F(SmsBodyTest, ABubbleIsAsWideAsItsLongestLine) {
    const auto widthOf = [&](const char* text) {
        QQuickItem* body = show(text);
        return std::pair(body->parentItem()->width(), body->property("contentWidth").toDouble());
    };
    const auto [wide, widest] = widthOf("iiiiiiiiii wwwwwwwwwwwwwwwwwww iiiiiiiiiiiiiiiiiiiiiiiiiiii");
    EXPECT_NEAR(wide, widest + 26, 1);
    EXPECT_LT(wide, part("bubble")->width() * 0.72 - 10) << "its two lines leave room";
    const auto [narrow, narrowest] = widthOf("ok");
    EXPECT_NEAR(narrow, narrowest + 26, 1);
}

TEST_F(SmsBodyTest, ANameOfManyLinesTakesOneLine) {
    show("Hello");
    state().phone.phoneSmsLog.set({{"1", "Ada", "Hello", 1.7e12, 1}});
    settle();
    const auto heights = [&] { return std::pair(part("chatName")->height(), part("messages")->height()); };
    const auto before = heights();
    std::string name;
    for (int i = 0; i < 100; ++i) {
        name += "line\n";
    }
    state().phone.phoneSmsLog.set({{"1", name, "Hello", 1.7e12, 1}});
    settle();
    EXPECT_EQ(heights(), before);
}

} // namespace
} // namespace velloway::test
