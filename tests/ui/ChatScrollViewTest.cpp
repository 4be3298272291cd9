// Where the messages of a chat stand as others come, as the user scrolls, and as the room for them changes.
#include "ui/ViewTest.h"

#include <QSignalSpy>

namespace velloway::test {
namespace {

class ChatScrollViewTest : public ViewTest {
protected:
    ChatScrollViewTest() {
        open(2);
        show(80);
        state().sms.activeRecipient.set("1");
        settle();
        list_ = part("messages");
        require("the end", [&] { return isAtEnd(); });
        QTest::qWait(50);
    }

    void show(int count) {
        std::vector<SmsRecord> log;
        for (int i = 0; i < count; ++i) {
            log.push_back({"1", std::nullopt,
                           "message " + std::to_string(i) +
                               " with words enough to fill more than one line of a "
                               "bubble in a narrow window, but not in a wide one",
                           1.6999e12 + i * 60'000.0, 1 + i % 2});
        }
        log.push_back({"2", std::nullopt, "hello", 1.6e12, 1});
        state().phone.phoneSmsLog.set(log);
        settle();
    }
    void resizeTo(int width) {
        openWindow().resize(width, 550);
        require("the width", [&] { return openWindow().width() == width; });
        settle();
    }

    bool isAtEnd() const { return list_->property("atYEnd").toBool(); }
    bool followsEnd() const { return list_->property("followsEnd").toBool(); }
    double place() const { return list_->property("contentY").toDouble(); }
    QObject* animation() const {
        for (QObject* object : list_->findChildren<QObject*>()) {
            if (object->inherits("QQuickNumberAnimation") && object->property("property") == "contentY") {
                return object;
            }
        }
        throw std::runtime_error("no animation");
    }
    bool moves() const { return animation()->property("running").toBool(); }
    /// For what is looked at while it runs, however slow the machine.
    void stretchAnimation() { animation()->setProperty("duration", 60'000); }

    QQuickItem* list_ = nullptr;
};

TEST_F(ChatScrollViewTest, ANewMessageGlidesIntoSightFromNotMoreThanAPageAway) {
    EXPECT_EQ(animation()->property("duration").toInt(), 220);
    QSignalSpy starts(animation(), SIGNAL(started()));
    show(81);
    require("the animation", [&] { return !starts.isEmpty(); });
    const double from = animation()->property("from").toDouble();
    const double to = animation()->property("to").toDouble();
    EXPECT_GT(to, from);
    EXPECT_LE(to - from, list_->height());
    EXPECT_TRUE(wait([&] { return !moves(); }));
    EXPECT_TRUE(isAtEnd());
    show(60);
    EXPECT_TRUE(wait([&] { return !moves() && isAtEnd(); })) << "messages that went";
}

TEST_F(ChatScrollViewTest, ManyNewMessagesGlideOnlyTheLastPage) {
    QSignalSpy starts(animation(), SIGNAL(started()));
    show(200);
    require("the animation", [&] { return !starts.isEmpty(); });
    EXPECT_NEAR(animation()->property("to").toDouble() - animation()->property("from").toDouble(),
                list_->height(), 1);
    EXPECT_TRUE(wait([&] { return !moves() && isAtEnd(); }));
}

TEST_F(ChatScrollViewTest, AnotherChatIsThereWithoutAnAnimation) {
    stretchAnimation();
    state().sms.activeRecipient.set("2");
    settle();
    EXPECT_FALSE(moves());
    state().sms.activeRecipient.set("1");
    settle();
    EXPECT_FALSE(moves());
    EXPECT_TRUE(isAtEnd());
    EXPECT_TRUE(followsEnd());
}

TEST_F(ChatScrollViewTest, TheSameMessagesAgainDoNotMove) {
    stretchAnimation();
    show(80);
    EXPECT_FALSE(moves());
    EXPECT_TRUE(isAtEnd());
}

TEST_F(ChatScrollViewTest, AKeyStopsTheAnimation) {
    stretchAnimation();
    list_->forceActiveFocus();
    show(81);
    require("the animation", [&] { return moves(); });
    QTest::keyClick(&openWindow(), Qt::Key_Home);
    EXPECT_FALSE(moves());
    settle();
    EXPECT_TRUE(list_->property("atYBeginning").toBool());
}

TEST_F(ChatScrollViewTest, TheKeysLeaveTheEndAndComeBackToIt) {
    list_->forceActiveFocus();
    ASSERT_TRUE(followsEnd());
    key(Qt::Key_PageUp);
    EXPECT_FALSE(followsEnd());
    key(Qt::Key_End);
    EXPECT_TRUE(followsEnd());
    key(Qt::Key_Home);
    EXPECT_FALSE(followsEnd());
}

TEST_F(ChatScrollViewTest, ANewMessageBringsBackToTheEndWhoHadLeftIt) {
    list_->forceActiveFocus();
    key(Qt::Key_Home);
    ASSERT_FALSE(followsEnd());
    QSignalSpy starts(animation(), SIGNAL(started()));
    show(81);
    require("the animation", [&] { return !starts.isEmpty(); });
    EXPECT_TRUE(wait([&] { return !moves() && isAtEnd(); }));
    EXPECT_TRUE(followsEnd());
}

TEST_F(ChatScrollViewTest, HomeReachesTheFirstMessageAboveLongOnes) {
    std::vector<SmsRecord> log;
    for (int i = 0; i < 80; ++i) {
        std::string body = "message " + std::to_string(i);
        for (int line = i; line < 40; ++line) {
            body += "\nand another line";
        }
        log.push_back({"1", std::nullopt, body, 1.6999e12 + i * 60'000.0, 1 + i % 2});
    }
    state().phone.phoneSmsLog.set(log);
    settle();
    require("the end", [&] { return !moves() && isAtEnd(); });
    list_->forceActiveFocus();
    key(Qt::Key_Home);
    EXPECT_TRUE(wait([&] { return list_->property("atYBeginning").toBool(); }));
    EXPECT_THAT(ViewHarness::text("body").toStdString(), testing::StartsWith("message 0\n"));
}

TEST_F(ChatScrollViewTest, TheEndStaysInSightInANarrowerWindow) {
    resizeTo(1400);
    EXPECT_TRUE(wait([&] { return isAtEnd(); }));
    resizeTo(800);
    EXPECT_TRUE(wait([&] { return isAtEnd(); }));
    list_->forceActiveFocus();
    key(Qt::Key_Home);
    resizeTo(1400);
    QTest::qWait(50);
    settle();
    EXPECT_FALSE(isAtEnd()) << "who reads further up is left there";
}

TEST_F(ChatScrollViewTest, AFlickAwayFromTheEndLeavesItAndOneBackFollowsIt) {
    QMetaObject::invokeMethod(list_, "flick", Q_ARG(qreal, 0), Q_ARG(qreal, 3000));
    EXPECT_FALSE(followsEnd());
    require("the end of the movement", [&] { return !list_->property("moving").toBool(); });
    EXPECT_FALSE(followsEnd());
    EXPECT_FALSE(isAtEnd());
    QMetaObject::invokeMethod(list_, "flick", Q_ARG(qreal, 0), Q_ARG(qreal, -9000));
    require("the end of the movement", [&] { return !list_->property("moving").toBool(); });
    EXPECT_TRUE(isAtEnd());
    EXPECT_TRUE(followsEnd());
}

TEST_F(ChatScrollViewTest, APressOnTheScrollBarLeavesTheEnd) {
    const QPoint bar = list_->mapToScene({list_->width() - 4, list_->height() / 2}).toPoint();
    QTest::mouseMove(&openWindow(), bar);
    QTest::mousePress(&openWindow(), Qt::LeftButton, {}, bar);
    EXPECT_FALSE(followsEnd());
    QTest::mouseRelease(&openWindow(), Qt::LeftButton, {}, bar);
}

} // namespace
} // namespace velloway::test
