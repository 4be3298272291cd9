#include "hosts/linux/notifications/NotificationPanels.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/notifications/ElidedLabel.h"
#include "hosts/linux/windows/WindowSpaces.h"
#include "hosts/windows/XClient.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <stdexcept>

namespace velloway::test {
namespace {

const ReplyField field{"Type your reply...", "Send"};

template <class Panel> std::vector<Panel*> visible() {
    std::vector<Panel*> found;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* panel = qobject_cast<Panel*>(window); panel && panel->isVisible()) {
            found.push_back(panel);
        }
    }
    return found;
}

template <class Panel> bool isShown(const QString& title) {
    const auto panels = visible<Panel>();
    return std::any_of(panels.begin(), panels.end(),
                       [&](const Panel* panel) { return panel->windowTitle() == title; });
}

template <class Panel> Panel* titled(const QString& title) {
    for (auto* panel : visible<Panel>()) {
        if (panel->windowTitle() == title) {
            return panel;
        }
    }
    throw std::runtime_error("no panel has the title " + title.toStdString());
}

QAbstractButton* button(QWidget* panel, const QString& name) {
    for (auto* candidate : panel->findChildren<QAbstractButton*>()) {
        if (candidate->accessibleName() == name) {
            return candidate;
        }
    }
    throw std::runtime_error("no button has the name " + name.toStdString());
}

class NotificationPanelsTest : public testing::Test {
protected:
    bool show(const std::string& identifier, std::optional<ReplyField> reply = std::nullopt,
              const QString& body = "body") {
        return panels_.showBanner(
            identifier, {QString::fromStdString(identifier), {}, body, reply},
            {.replied = [=, this](const auto& text) { note(identifier + " replied " + text.toStdString()); },
             .clicked = [=, this] { note(identifier + " clicked"); },
             .dismissed = [=, this] { note(identifier + " dismissed"); },
             .gone = [=, this] { note(identifier + " gone"); }});
    }
    void openReply(const std::string& identifier) {
        panels_.openReply(identifier, {QString::fromStdString(identifier), "Are we on?", field},
                          [=, this](const auto& text) { note(identifier + " replied " + text.toStdString()); });
    }
    void note(const std::string& event) { events_.push_back(event); }

    using Events = std::vector<std::string>;
    Events events_;
    NotificationPanels panels_;
};

TEST_F(NotificationPanelsTest, TheReplyPanelTakesTheKeyboardAndReturnSends) {
    openReply("Ada");
    auto* panel = titled<ReplyPanel>("Ada");
    auto* input = panel->findChild<QLineEdit*>();
    ASSERT_TRUE(waitFor([&] { return input->hasFocus(); }));
    EXPECT_EQ(input->placeholderText(), "Type your reply...");
    QTest::keyClicks(input, "On my way");
    QTest::keyClick(input, Qt::Key_Return);
    EXPECT_EQ(events_, (Events{"Ada replied On my way"}));
    EXPECT_TRUE(visible<ReplyPanel>().empty());
}

TEST_F(NotificationPanelsTest, TheReplyPanelIsFirstOfAllADialogForTheWindowManager) {
    openReply("Ada");
    const XClient client;
    EXPECT_EQ(client.nameIn(*titled<ReplyPanel>("Ada")->windowHandle(), "_NET_WM_WINDOW_TYPE"),
              "_NET_WM_WINDOW_TYPE_DIALOG");
}

TEST_F(NotificationPanelsTest, TheSendButtonSendsAlsoAnEmptyReply) {
    openReply("Ada");
    QTest::mouseClick(button(titled<ReplyPanel>("Ada"), "Send"), Qt::LeftButton);
    EXPECT_EQ(events_, (Events{"Ada replied "}));
}

TEST_F(NotificationPanelsTest, TheSendButtonWorksFromTheKeyboard) {
    openReply("Ada");
    auto* panel = titled<ReplyPanel>("Ada");
    auto* input = panel->findChild<QLineEdit*>();
    ASSERT_TRUE(waitFor([&] { return input->hasFocus(); }));
    QTest::keyClicks(input, "yes");
    QTest::keyClick(input, Qt::Key_Tab);
    auto* send = button(panel, "Send");
    ASSERT_TRUE(send->hasFocus());
    QTest::keyClick(send, Qt::Key_Return);
    EXPECT_EQ(events_, (Events{"Ada replied yes"}));
}

TEST_F(NotificationPanelsTest, EscapeAndTheCloseButtonSendNothing) {
    openReply("Ada");
    QTest::keyClick(titled<ReplyPanel>("Ada")->findChild<QLineEdit*>(), Qt::Key_Escape);
    EXPECT_TRUE(visible<ReplyPanel>().empty());
    openReply("Ada");
    QTest::mouseClick(button(titled<ReplyPanel>("Ada"), "Cancel"), Qt::LeftButton);
    EXPECT_TRUE(visible<ReplyPanel>().empty());
    EXPECT_TRUE(events_.empty());
}

TEST_F(NotificationPanelsTest, PanelsExistOnlyWhileTheyAreToBeSeen) {
    openReply("Ada");
    show("one");
    QTest::keyClick(titled<ReplyPanel>("Ada")->findChild<QLineEdit*>(), Qt::Key_Escape);
    panels_.closeBanner("one");
    EXPECT_TRUE(waitFor([] {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (qobject_cast<FloatingPanel*>(window)) {
                return false;
            }
        }
        return true;
    }));
}

TEST_F(NotificationPanelsTest, PanelsStandBelowEachOtherAtTheTopRight) {
    openReply("Ada");
    show("one");
    show("two", field);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QRect ada = titled<ReplyPanel>("Ada")->panelGeometry();
    const QRect one = titled<NotificationBanner>("one")->panelGeometry();
    const QRect two = titled<NotificationBanner>("two")->panelGeometry();
    EXPECT_EQ(ada.top(), screen.top() + 20);
    EXPECT_EQ(ada.right(), screen.right() - 20);
    EXPECT_EQ(ada.width(), 350);
    EXPECT_EQ(one.top(), ada.bottom() + 1 + 10);
    EXPECT_EQ(two.top(), one.bottom() + 1 + 10);
    EXPECT_EQ(two.right(), ada.right());
    QTest::keyClick(titled<ReplyPanel>("Ada")->findChild<QLineEdit*>(), Qt::Key_Escape);
    EXPECT_EQ(titled<NotificationBanner>("one")->panelGeometry().top(), screen.top() + 20);
}

TEST_F(NotificationPanelsTest, BannersMakeRoomForACallPanelAndComeBack) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const auto topOf = [](const char* title) {
        return titled<NotificationBanner>(title)->panelGeometry().top();
    };
    show("one");
    ASSERT_EQ(topOf("one"), screen.top() + 20);
    QWindow call;
    call.setObjectName(callPanelName);
    call.setFlag(Qt::BypassWindowManagerHint);
    call.setGeometry(screen.right() - 369, screen.top() + 20, 350, 80);
    call.show();
    EXPECT_TRUE(waitFor([&] { return topOf("one") == screen.top() + 110; }));
    show("two");
    EXPECT_GT(topOf("two"), topOf("one"));
    call.hide();
    EXPECT_TRUE(waitFor([&] { return topOf("one") == screen.top() + 20; }));
    // Dragged out of the way, it takes no room.
    call.setPosition(screen.left(), screen.top());
    call.show();
    show("three");
    EXPECT_EQ(topOf("one"), screen.top() + 20);
}

TEST_F(NotificationPanelsTest, ABannerDoesNotTakeTheKeyboardButItsFieldCanHaveIt) {
    openReply("Ada");
    auto* input = titled<ReplyPanel>("Ada")->findChild<QLineEdit*>();
    ASSERT_TRUE(waitFor([&] { return input->hasFocus(); }));
    show("one", field);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(titled<NotificationBanner>("one")));
    processPending();
    EXPECT_TRUE(input->hasFocus());
    auto* bannerInput = titled<NotificationBanner>("one")->findChild<QLineEdit*>();
    QTest::keyClicks(bannerInput, "ok");
    QTest::keyClick(bannerInput, Qt::Key_Return);
    EXPECT_EQ(events_, (Events{"one replied ok", "one gone"}));
}

TEST_F(NotificationPanelsTest, ABannerTellsHowItEnded) {
    show("one");
    show("two");
    show("three");
    QTest::mouseClick(titled<NotificationBanner>("one"), Qt::LeftButton, {}, {100, 40});
    QTest::mouseClick(button(titled<NotificationBanner>("two"), "Close"), Qt::LeftButton);
    panels_.closeBanner("three");
    EXPECT_EQ(events_, (Events{"one clicked", "one gone", "two dismissed", "two gone"}));
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(NotificationPanelsTest, ABannerIsReplacedInPlace) {
    show("one", {}, "before");
    show("two");
    const QPoint place = titled<NotificationBanner>("one")->panelGeometry().topLeft();
    show("one", {}, "after");
    ASSERT_EQ(visible<NotificationBanner>().size(), 2u);
    EXPECT_EQ(titled<NotificationBanner>("one")->panelGeometry().topLeft(), place);
    EXPECT_EQ(titled<NotificationBanner>("one")->findChildren<ElidedLabel*>().back()->text(), "after");
    EXPECT_TRUE(events_.empty());
}

TEST_F(NotificationPanelsTest, FourBannersStandAtOnceAndTheOthersFollow) {
    for (int i = 0; i < 6; ++i) {
        EXPECT_TRUE(show(std::to_string(i)));
    }
    EXPECT_EQ(visible<NotificationBanner>().size(), 4u);
    EXPECT_FALSE(isShown<NotificationBanner>("4"));
    panels_.closeBanner("5");
    panels_.closeBanner("0");
    panels_.closeBanner("1");
    EXPECT_TRUE(isShown<NotificationBanner>("4"));
    EXPECT_EQ(visible<NotificationBanner>().size(), 3u);
}

TEST_F(NotificationPanelsTest, NoMoreThanFiftyWait) {
    int taken = 0;
    for (int i = 0; i < 100; ++i) {
        taken += show(std::to_string(i)) ? 1 : 0;
    }
    EXPECT_EQ(taken, 54);
}

TEST_F(NotificationPanelsTest, ABannerGoesAwayByItselfButNotWhileAnAnswerIsTyped) {
    QCursor::setPos(10, 10);
    NotificationBanner quiet({"quiet", {}, "body", std::nullopt});
    NotificationBanner typed({"typed", {}, "body", field});
    QSignalSpy quietEnds(&quiet, &NotificationBanner::expired);
    QSignalSpy typedEnds(&typed, &NotificationBanner::expired);
    quiet.setLifetime(std::chrono::milliseconds(20));
    typed.setLifetime(std::chrono::milliseconds(20));
    typed.findChild<QLineEdit*>()->setText("half an ans");
    quiet.move(400, 100);
    typed.move(400, 400);
    quiet.show();
    typed.show();
    EXPECT_TRUE(waitFor([&] { return quietEnds.size() == 1; }));
    EXPECT_EQ(typedEnds.size(), 0);
    typed.findChild<QLineEdit*>()->clear();
    EXPECT_TRUE(waitFor([&] { return typedEnds.size() == 1; }));
}

TEST_F(NotificationPanelsTest, APanelIsDraggedByItsBackgroundAndThenStaysThere) {
    show("one");
    auto* banner = titled<NotificationBanner>("one");
    ASSERT_TRUE(QTest::qWaitForWindowExposed(banner));
    const QPoint before = banner->panelGeometry().topLeft();
    QTest::mousePress(banner, Qt::LeftButton, {}, {100, 40});
    QTest::mouseMove(banner, {60, 90});
    QTest::mouseMove(banner, {50, 100});
    QTest::mouseRelease(banner, Qt::LeftButton, {}, {50, 100});
    const QPoint after = banner->panelGeometry().topLeft();
    EXPECT_NE(after, before);
    EXPECT_TRUE(events_.empty());
    show("two");
    EXPECT_EQ(banner->panelGeometry().topLeft(), after);
}

TEST_F(NotificationPanelsTest, PanelsFollowADarkDesktop) {
    const QPalette before = QApplication::palette();
    show("one");
    auto* banner = titled<NotificationBanner>("one");
    EXPECT_GT(banner->palette().color(QPalette::Window).lightness(), 200);
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(30, 30, 30));
    QApplication::setPalette(dark);
    processPending();
    EXPECT_LT(banner->palette().color(QPalette::Window).lightness(), 80);
    EXPECT_GT(banner->findChild<ElidedLabel*>()->palette().color(QPalette::WindowText).lightness(), 200);
    QApplication::setPalette(before);
}

TEST_F(NotificationPanelsTest, ScreenReadersFindTheParts) {
    openReply("Ada");
    auto* panel = titled<ReplyPanel>("Ada");
    EXPECT_EQ(panel->accessibleName(), "Ada");
    const auto* input = QAccessible::queryAccessibleInterface(panel->findChild<QLineEdit*>());
    EXPECT_EQ(input->role(), QAccessible::EditableText);
    EXPECT_EQ(input->text(QAccessible::Name), "Type your reply...");
    const auto* send = QAccessible::queryAccessibleInterface(button(panel, "Send"));
    EXPECT_EQ(send->role(), QAccessible::Button);
    EXPECT_EQ(send->text(QAccessible::Name), "Send");
    const auto* label = QAccessible::queryAccessibleInterface(panel->findChildren<ElidedLabel*>().back());
    EXPECT_EQ(label->role(), QAccessible::StaticText);
    EXPECT_EQ(label->text(QAccessible::Name), "Are we on?");
}

TEST(ElidedLabelTest, KeepsToItsLinesAndEndsInAnEllipsis) {
    const ElidedLabel two(QString("word ").repeated(100), 2);
    ASSERT_EQ(two.linesAt(200).size(), 2);
    EXPECT_FALSE(two.linesAt(200)[0].endsWith(u'…'));
    EXPECT_TRUE(two.linesAt(200)[1].endsWith(u'…'));
    EXPECT_EQ(ElidedLabel("a\n\nb\nc", 4).linesAt(200), (QStringList{"a", "b", "c"}));
    EXPECT_EQ(ElidedLabel("a\nb\nc", 2).linesAt(200), (QStringList{"a", "b c"}));
    EXPECT_TRUE(ElidedLabel(QString("x").repeated(1000), 1).linesAt(100)[0].endsWith(u'…'));
    EXPECT_TRUE(ElidedLabel("", 3).linesAt(100).isEmpty());
}

} // namespace
} // namespace velloway::test
