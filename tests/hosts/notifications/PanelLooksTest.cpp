#include "desktop/WaitFor.h"
#include "hosts/linux/notifications/BannerFallback.h"
#include "hosts/linux/notifications/ElidedLabel.h"
#include "hosts/linux/notifications/NotificationBanner.h"
#include "hosts/linux/notifications/ReplyPanel.h"
#include "hosts/windows/XClient.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLayout>
#include <QLineEdit>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace velloway::test {
namespace {

const ReplyField field{"Type your reply...", "Send"};
const QString longText = QString("word ").repeated(200);

/// A different colour for every role that the parts use.
QPalette gaudy() {
    QPalette colors;
    colors.setColor(QPalette::Window, Qt::white);
    colors.setColor(QPalette::WindowText, Qt::black);
    colors.setColor(QPalette::PlaceholderText, Qt::darkCyan);
    colors.setColor(QPalette::Base, Qt::yellow);
    colors.setColor(QPalette::Text, Qt::darkRed);
    colors.setColor(QPalette::Mid, Qt::green);
    colors.setColor(QPalette::Highlight, Qt::blue);
    colors.setColor(QPalette::Dark, Qt::cyan);
    colors.setColor(QPalette::HighlightedText, Qt::magenta);
    return colors;
}

bool hasColor(const QImage& image, const QColor& color) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == color) {
                return true;
            }
        }
    }
    return false;
}

template <class Widget> std::unique_ptr<Widget> painted(std::unique_ptr<Widget> widget, QSize size) {
    widget->setPalette(gaudy());
    widget->setAutoFillBackground(true);
    widget->resize(size);
    return widget;
}

QImage imageOf(QWidget& widget) {
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// Texts as they are to stand on a label: each line on its own base line, at the edge where its script begins.
struct Line {
    QString text;
    bool isRightToLeft;
};

QImage drawn(const QList<Line>& lines, const QFont& font, QSize size, const QColor& color) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(color);
    const QFontMetrics metrics(font);
    for (int i = 0; i < lines.size(); ++i) {
        painter.setLayoutDirection(lines[i].isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        const int x = lines[i].isRightToLeft ? size.width() - metrics.horizontalAdvance(lines[i].text) : 0;
        painter.drawText(x, metrics.ascent() + i * metrics.lineSpacing(), lines[i].text);
    }
    return image;
}

TEST(ElidedLabelLooks, EachLineStandsAtItsOwnEdgeInTheColourOfTheLabel) {
    const QString hebrew = QString::fromUtf8("שלום.");
    auto label = painted(std::make_unique<ElidedLabel>("one (two).\n" + hebrew + "\nthree", 3), {200, 80});
    label->setForegroundRole(QPalette::PlaceholderText);
    const QList<Line> lines{{"one (two).", false}, {hebrew, true}, {"three", false}};
    EXPECT_EQ(imageOf(*label), drawn(lines, label->font(), {200, 80}, Qt::darkCyan));
}

TEST(ElidedLabelLooks, LinesFitIntoTheWidthAndBreakBetweenWordsWhereTheyCan) {
    const ElidedLabel words(longText, 4);
    const QFontMetrics metrics(words.font());
    const QStringList lines = words.linesAt(150);
    ASSERT_EQ(lines.size(), 4);
    for (const QString& line : lines) {
        EXPECT_LE(metrics.horizontalAdvance(line), 150);
        EXPECT_GT(metrics.horizontalAdvance(line), 100);
        EXPECT_TRUE(line.startsWith("word"));
        EXPECT_EQ(line, line.trimmed());
    }
    const ElidedLabel oneWord(QString("x").repeated(60), 20);
    const QStringList pieces = oneWord.linesAt(100);
    EXPECT_GT(pieces.size(), 2);
    EXPECT_EQ(pieces.join(""), QString("x").repeated(60));
    for (const QString& piece : pieces) {
        EXPECT_LE(metrics.horizontalAdvance(piece), 100);
    }
}

TEST(ElidedLabelLooks, ParagraphsThatFindNoLineStandBehindTheLast) {
    EXPECT_EQ(ElidedLabel("a\nb\nc", 1).linesAt(200), (QStringList{"a b c"}));
    EXPECT_EQ(ElidedLabel("a\nb\nc", 3).linesAt(200), (QStringList{"a", "b", "c"}));
    EXPECT_EQ(ElidedLabel("a\nb\nc\nd\n\ne", 3).linesAt(200), (QStringList{"a", "b", "c d e"}));
    EXPECT_EQ(ElidedLabel("a\nb", 2).linesAt(200), (QStringList{"a", "b"}));
}

TEST(ElidedLabelLooks, ItsHeightIsThatOfItsLines) {
    const ElidedLabel one("short", 3);
    const int line = one.fontMetrics().lineSpacing();
    EXPECT_EQ(one.heightForWidth(200), line);
    EXPECT_EQ(ElidedLabel("", 3).heightForWidth(200), line);
    EXPECT_EQ(ElidedLabel(longText, 3).heightForWidth(200), 3 * line);
    EXPECT_EQ(ElidedLabel(longText, 3).sizeHint(), QSize(200, 3 * line));
    EXPECT_EQ(ElidedLabel(longText, 3).minimumSizeHint(), QSize(40, line));
    EXPECT_EQ(one.sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    EXPECT_EQ(one.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
}

TEST(ElidedLabelLooks, MarkupIsText) {
    const ElidedLabel label("<b>x</b>", 1);
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    EXPECT_EQ(label.text(), "<b>x</b>");
}

class ReplyRowTest : public testing::Test {
protected:
    ReplyRowTest() {
        row_ = painted(std::make_unique<ReplyRow>(
                           field, [this](const QString& text) { sent_.push_back(text); }, nullptr),
                       {300, 36});
        button_ = row_->findChild<QAbstractButton*>();
    }
    QLineEdit& input() { return *row_->input(); }
    QImage look(QWidget& part) { return imageOf(*row_).copy(part.geometry()); }

    QStringList sent_;
    std::unique_ptr<ReplyRow> row_;
    QAbstractButton* button_;
};

TEST_F(ReplyRowTest, TheFieldTakesTheRoomThatTheButtonLeaves) {
    row_->layout()->activate();
    const int width = button_->fontMetrics().horizontalAdvance("Send") + 28;
    EXPECT_EQ(button_->geometry(), QRect(300 - width, 6, width, 30));
    EXPECT_EQ(input().geometry(), QRect(0, 6, 300 - width - 8, 30));
    EXPECT_EQ(input().textMargins(), QMargins(8, 0, 8, 0));
    EXPECT_FALSE(input().hasFrame());
    EXPECT_EQ(row_->sizeHint().height(), 36);
}

TEST_F(ReplyRowTest, TextsAndNamesStandWhereTheyBelong) {
    EXPECT_EQ(input().placeholderText(), "Type your reply...");
    EXPECT_EQ(input().accessibleName(), "Type your reply...");
    EXPECT_EQ(button_->text(), "Send");
    EXPECT_EQ(button_->accessibleName(), "Send");
    EXPECT_EQ(button_->font().weight(), QFont::DemiBold);
    EXPECT_EQ(button_->focusPolicy(), Qt::TabFocus);
    EXPECT_TRUE(button_->testAttribute(Qt::WA_Hover));
    EXPECT_EQ(row_->focusProxy(), &input());
}

TEST_F(ReplyRowTest, ReturnInTheFieldAndAllKeysOfTheButtonSend) {
    input().setText("yes");
    QTest::keyClick(&input(), Qt::Key_Return);
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        QTest::keyClick(button_, key);
    }
    QTest::keyClick(button_, Qt::Key_A);
    EXPECT_EQ(sent_, (QStringList{"yes", "yes", "yes", "yes"}));
    QTest::mouseClick(button_, Qt::LeftButton);
    EXPECT_EQ(sent_.size(), 5);
}

TEST_F(ReplyRowTest, TheFieldIsARoundedBoxWithARingInTheAccentOnceItHasTheKeyboard) {
    const QImage idle = look(input());
    const int middle = idle.width() / 2;
    EXPECT_EQ(idle.pixelColor(middle, 0), QColor(Qt::green));
    EXPECT_EQ(idle.pixelColor(middle, 1), QColor(Qt::yellow));
    EXPECT_EQ(idle.pixelColor(middle, idle.height() - 1), QColor(Qt::green));
    EXPECT_EQ(idle.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(idle.pixelColor(middle, 26), QColor(Qt::yellow));
    // Where the corner's curve is, the edge is smooth.
    EXPECT_TRUE(idle.pixelColor(2, 2) != QColor(Qt::white) && idle.pixelColor(2, 2) != QColor(Qt::green));
    row_->show();
    row_->activateWindow();
    input().setFocus();
    ASSERT_TRUE(waitFor([&] { return input().hasFocus(); }));
    // A character without thin lines.
    input().setText(QString(QChar(0x2588)));
    const QImage used = look(input());
    EXPECT_EQ(used.pixelColor(middle, 0), QColor(Qt::blue));
    EXPECT_NE(used.pixelColor(middle, 1), QColor(Qt::yellow));
    EXPECT_EQ(used.pixelColor(middle, 2), QColor(Qt::yellow));
    EXPECT_TRUE(hasColor(used, Qt::darkRed));
}

TEST_F(ReplyRowTest, TheButtonIsInTheAccentAndDarkerWhilePressed) {
    const QImage idle = look(*button_);
    EXPECT_EQ(idle.pixelColor(10, 1), QColor(Qt::blue));
    EXPECT_EQ(idle.pixelColor(4, 15), QColor(Qt::blue));
    EXPECT_EQ(idle.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_TRUE(idle.pixelColor(2, 2) != QColor(Qt::white) && idle.pixelColor(2, 2) != QColor(Qt::blue));
    EXPECT_TRUE(hasColor(idle, Qt::magenta));
    button_->setDown(true);
    EXPECT_EQ(look(*button_).pixelColor(4, 15), QColor(Qt::cyan));
    button_->setDown(false);
    row_->show();
    row_->activateWindow();
    button_->setFocus();
    ASSERT_TRUE(waitFor([&] { return button_->hasFocus(); }));
    EXPECT_EQ(look(*button_).pixelColor(10, 0), QColor(Qt::black));
    EXPECT_EQ(look(*button_).pixelColor(4, 15), QColor(Qt::blue));
}

TEST_F(ReplyRowTest, TheButtonIsDarkerUnderThePointer) {
    QCursor::setPos(10, 10);
    row_->move(400, 300);
    row_->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(row_.get()));
    QCursor::setPos(button_->mapToGlobal(button_->rect().center()));
    EXPECT_TRUE(waitFor([&] { return look(*button_).pixelColor(4, 15) == QColor(Qt::cyan); }));
    QCursor::setPos(10, 10);
    EXPECT_TRUE(waitFor([&] { return look(*button_).pixelColor(4, 15) == QColor(Qt::blue); }));
}

QList<ElidedLabel*> labelsOf(QWidget& panel) {
    return panel.findChildren<ElidedLabel*>();
}

qsizetype linesOf(const ElidedLabel& label) {
    return label.linesAt(200).size();
}

TEST(NotificationBannerLooks, TitleSubtitleAndBodyDifferInWeightColourAndLength) {
    NotificationBanner banner({"t" + longText, "s" + longText, "b" + longText, std::nullopt});
    banner.grab();
    const auto labels = labelsOf(banner);
    ASSERT_EQ(labels.size(), 3);
    struct Part {
        QChar first;
        int lines;
        QFont::Weight weight;
        int pixels;
        QPalette::ColorRole color;
    };
    const Part parts[] = {{u't', 1, QFont::DemiBold, 14, QPalette::WindowText},
                          {u's', 1, QFont::DemiBold, 13, QPalette::WindowText},
                          {u'b', 4, QFont::Normal, 13, QPalette::PlaceholderText}};
    int bottom = -1;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(labels[i]->text().front(), parts[i].first);
        EXPECT_EQ(linesOf(*labels[i]), parts[i].lines);
        EXPECT_EQ(labels[i]->font().weight(), parts[i].weight);
        EXPECT_EQ(labels[i]->font().pixelSize(), parts[i].pixels);
        EXPECT_EQ(labels[i]->foregroundRole(), parts[i].color);
        const QRect place(labels[i]->mapTo(&banner, QPoint()), labels[i]->size());
        EXPECT_GT(place.top(), bottom);
        EXPECT_EQ(place.left(), 14);
        EXPECT_EQ(place.height(), labels[i]->heightForWidth(place.width()));
        bottom = place.bottom();
    }
    EXPECT_EQ(banner.windowTitle().front(), u't');
    EXPECT_EQ(banner.accessibleName().front(), u't');
    EXPECT_EQ(banner.objectName(), "NotificationBanner");
    EXPECT_TRUE(banner.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_EQ(banner.findChild<QLineEdit*>(), nullptr);
    EXPECT_TRUE(banner.windowHandle()->flags() & Qt::BypassWindowManagerHint);
}

TEST(NotificationBannerLooks, ItIsAsHighAsItsContentAndTheCloseButtonStandsAtTheRight) {
    NotificationBanner bare({"title", {}, {}, std::nullopt});
    NotificationBanner whole({"title", "subtitle", "body", field});
    bare.grab();
    EXPECT_EQ(labelsOf(bare).size(), 1);
    EXPECT_EQ(bare.height(), 14 + 20 + 14);
    const int line = labelsOf(whole)[1]->fontMetrics().lineSpacing();
    const int body = labelsOf(whole)[2]->fontMetrics().lineSpacing();
    EXPECT_EQ(whole.height(), 14 + 20 + 4 + line + 4 + body + 4 + 36 + 14);
    auto* close = bare.findChild<QAbstractButton*>();
    EXPECT_EQ(close->accessibleName(), "Close");
    EXPECT_EQ(QRect(close->mapTo(&bare, QPoint()), close->size()), QRect(350 - 14 - 20, 14, 20, 20));
    EXPECT_EQ(labelsOf(bare)[0]->width(), 350 - 2 * 14 - 20 - 8);
}

TEST(NotificationBannerLooks, ItStaysSixSecondsOrTwelveToAnswer) {
    const NotificationBanner read({"title", {}, "body", std::nullopt});
    const NotificationBanner answer({"title", {}, "body", field});
    EXPECT_EQ(read.findChild<QTimer*>()->intervalAsDuration(), std::chrono::seconds(6));
    EXPECT_EQ(answer.findChild<QTimer*>()->intervalAsDuration(), std::chrono::seconds(12));
    EXPECT_FALSE(answer.findChild<QTimer*>()->isActive());
}

TEST(NotificationBannerUse, ItExpiresOnceAndNotUnderThePointer) {
    QCursor::setPos(10, 10);
    NotificationBanner banner({"title", {}, "body", field});
    QSignalSpy ends(&banner, &NotificationBanner::expired);
    auto* timer = banner.findChild<QTimer*>();
    QSignalSpy rounds(timer, &QTimer::timeout);
    banner.setLifetime(std::chrono::hours(1));
    banner.move(400, 300);
    banner.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&banner));
    EXPECT_TRUE(timer->isActive());
    QCursor::setPos(450, 310);
    ASSERT_TRUE(waitFor([&] { return banner.isInUse(); }));
    banner.setLifetime(std::chrono::milliseconds(1));
    ASSERT_TRUE(waitFor([&] { return rounds.size() > 3; }));
    EXPECT_TRUE(ends.isEmpty());
    QCursor::setPos(10, 10);
    ASSERT_TRUE(waitFor([&] { return ends.size() == 1; }));
    EXPECT_FALSE(timer->isActive());
}

TEST(NotificationBannerUse, TheKeyboardAndATextKeepIt) {
    QCursor::setPos(10, 10);
    NotificationBanner banner({"title", {}, "body", field});
    banner.move(400, 300);
    banner.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&banner));
    EXPECT_FALSE(banner.isInUse());
    // A click into the field asks for the keyboard, as no window manager does for this window.
    auto* input = banner.findChild<QLineEdit*>();
    QTest::mouseClick(input, Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return banner.isActiveWindow() && input->hasFocus(); }));
    EXPECT_TRUE(banner.isInUse());
    input->clearFocus();
    EXPECT_FALSE(banner.isInUse());
    input->setText("x");
    EXPECT_TRUE(banner.isInUse());
}

TEST(ReplyPanelLooks, TitleTextAndFieldStandBelowEachOther) {
    ReplyPanel panel({"t" + longText, "b" + longText, field});
    panel.grab();
    const auto labels = labelsOf(panel);
    ASSERT_EQ(labels.size(), 2);
    EXPECT_EQ(labels[0]->text().front(), u't');
    EXPECT_EQ(linesOf(*labels[0]), 1);
    EXPECT_EQ(labels[0]->font().weight(), QFont::DemiBold);
    EXPECT_EQ(labels[0]->font().pixelSize(), 14);
    EXPECT_EQ(labels[0]->geometry().left(), 14);
    EXPECT_EQ(labels[0]->width(), 350 - 2 * 14 - 20 - 8);
    EXPECT_EQ(labels[1]->text().front(), u'b');
    EXPECT_EQ(linesOf(*labels[1]), 2);
    EXPECT_EQ(labels[1]->foregroundRole(), QPalette::PlaceholderText);
    const int line = labels[1]->fontMetrics().lineSpacing();
    EXPECT_EQ(labels[1]->geometry(), QRect(14, 14 + 20 + 4, 350 - 2 * 14, 2 * line));
    EXPECT_EQ(panel.height(), 14 + 20 + 4 + 2 * line + 4 + 36 + 14);
    EXPECT_EQ(panel.minimumHeight(), panel.height());
    EXPECT_EQ(panel.maximumHeight(), panel.height());
    const auto* close = panel.findChildren<QAbstractButton*>().front();
    EXPECT_EQ(close->accessibleName(), "Cancel");
    EXPECT_EQ(close->geometry(), QRect(350 - 14 - 20, 14, 20, 20));
    EXPECT_EQ(panel.objectName(), "ReplyPanel");
    EXPECT_EQ(panel.windowTitle().front(), u't');
    EXPECT_EQ(panel.accessibleName().front(), u't');
    EXPECT_EQ(panel.findChild<QLineEdit*>()->placeholderText(), "Type your reply...");
    EXPECT_TRUE(panel.testAttribute(Qt::WA_X11NetWmWindowTypeDialog));
    EXPECT_FALSE(panel.windowHandle()->flags() & Qt::BypassWindowManagerHint);
    EXPECT_EQ(labelsOf(*std::make_unique<ReplyPanel>(ReplyPanel::Prompt{"title", "", field})).size(), 1);
}

TEST(ReplyPanelLooks, ItIsOnEveryDesktop) {
    ReplyPanel panel({"title", "text", field});
    panel.show();
    const XClient client;
    EXPECT_TRUE(waitFor([&] {
        return client.property(XClient::idOf(*panel.windowHandle()), "_NET_WM_DESKTOP") ==
               std::vector<std::uint32_t>{0xffffffff};
    }));
}

TEST(ReplyPanelUse, TheKeyboardComesToTheFieldAndThePanelToTheFront) {
    ReplyPanel panel({"title", "text", field});
    QWidget other(nullptr, Qt::BypassWindowManagerHint);
    panel.setGeometry(300, 300, panel.width(), panel.height());
    other.setGeometry(300, 300, 400, 200);
    panel.show();
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&other));
    other.raise();
    panel.findChildren<QAbstractButton*>().front()->setFocus();
    panel.takeKeyboard();
    EXPECT_TRUE(waitFor([&] { return panel.findChild<QLineEdit*>()->hasFocus() && panel.isActiveWindow(); }));
}

TEST(BannerFallbackTest, ABannerShowsTheTextsAndReportsUnderItsIdentifier) {
    QStringList events;
    const auto note = [&](const char* what) {
        return [&events, what](const std::string& identifier) {
            events << QString::fromStdString(identifier) + ' ' + what;
        };
    };
    BannerFallback fallback({.replied =
                                 [&](const auto& identifier, const auto& action, const QString& text) {
                                     events << QString::fromStdString(identifier + ' ' + action + ' ') + text;
                                 },
                             .clicked = note("clicked"),
                             .dismissed = note("dismissed"),
                             .gone = note("gone")});
    EXPECT_TRUE(BannerFallback::canShow());
    EXPECT_TRUE(fallback.hasRoom());
    const TextInputNotificationAction reply{"REPLY_ACTION", "Reply", "Send", "Type your reply..."};
    const auto banner = [](const QString& title) -> QWidget* {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && window->windowTitle() == title) {
                return window;
            }
        }
        return nullptr;
    };
    EXPECT_TRUE(fallback.show("a", {.title = "A", .subtitle = "Ada", .body = "Hello?"}, reply));
    EXPECT_TRUE(fallback.show("b", {.title = "B", .body = "Hi"}, std::nullopt));
    EXPECT_TRUE(fallback.show("c", {.title = "C\x01", .body = "Hi\x01"}, std::nullopt));
    ASSERT_TRUE(banner("A") && banner("B") && banner("C"));
    EXPECT_EQ(labelsOf(*banner("A"))[1]->text(), "Ada");
    EXPECT_EQ(labelsOf(*banner("A"))[2]->text(), "Hello?");
    EXPECT_EQ(labelsOf(*banner("B")).size(), 2);
    EXPECT_EQ(labelsOf(*banner("C"))[1]->text(), "Hi");
    EXPECT_EQ(banner("B")->findChild<QLineEdit*>(), nullptr);
    auto* input = banner("A")->findChild<QLineEdit*>();
    EXPECT_EQ(input->placeholderText(), "Type your reply...");
    QStringList buttons;
    for (const auto* button : banner("A")->findChildren<QAbstractButton*>()) {
        buttons << button->accessibleName();
    }
    EXPECT_EQ(buttons, (QStringList{"Close", "Send"}));
    EXPECT_TRUE(fallback.isOnScreen("a"));
    EXPECT_FALSE(fallback.isOnScreen("d"));
    EXPECT_FALSE(fallback.isInUse("a"));
    input->setText("yes");
    EXPECT_TRUE(fallback.isInUse("a"));
    QTest::keyClick(input, Qt::Key_Return);
    QTest::mouseClick(banner("B"), Qt::LeftButton, {}, {100, 40});
    QTest::mouseClick(banner("C")->findChild<QAbstractButton*>(), Qt::LeftButton);
    EXPECT_EQ(events,
              (QStringList{"a REPLY_ACTION yes", "a gone", "b clicked", "b gone", "c dismissed", "c gone"}));
}

TEST(BannerFallbackTest, TheReplyPanelNamesTheSenderWhereThereIsOne) {
    QStringList events;
    BannerFallback fallback({.replied = [&](const auto& identifier, const auto& action, const QString& text) {
        events << QString::fromStdString(identifier + ' ' + action + ' ') + text;
    }});
    struct Case {
        std::optional<std::string> subtitle;
        QString title;
    };
    const TextInputNotificationAction reply{"REPLY_ACTION", "Reply", "Send", "Type your reply..."};
    for (const Case& each : {Case{"Ada", "Ada"}, {"", "Chat"}, {std::nullopt, "Chat"}}) {
        fallback.openReply("key", {.title = "Chat", .subtitle = each.subtitle, .body = "Hello?"}, reply);
        EXPECT_TRUE(fallback.isReplyOpen("key"));
        EXPECT_FALSE(fallback.isReplyOpen("other"));
        ReplyPanel* panel = nullptr;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && qobject_cast<ReplyPanel*>(window)) {
                panel = qobject_cast<ReplyPanel*>(window);
            }
        }
        ASSERT_NE(panel, nullptr);
        EXPECT_EQ(panel->windowTitle(), each.title);
        EXPECT_EQ(labelsOf(*panel)[1]->text(), "Hello?");
        EXPECT_EQ(panel->findChild<QLineEdit*>()->placeholderText(), "Type your reply...");
        panel->findChild<QLineEdit*>()->setText("yes");
        QTest::keyClick(panel->findChild<QLineEdit*>(), Qt::Key_Return);
        EXPECT_FALSE(fallback.isReplyOpen("key"));
    }
    EXPECT_EQ(events, QStringList(3, "key REPLY_ACTION yes"));
}

} // namespace
} // namespace velloway::test
