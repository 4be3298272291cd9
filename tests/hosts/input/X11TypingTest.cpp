#include "XServer.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/input/X11Input.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonValue>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

namespace velloway::test {

namespace {

using namespace std::chrono_literals;

/// Latin with accents, Chinese, Japanese, Hebrew, Cyrillic, a thumb with a skin tone and a family of four.
const QString sample = QStringLiteral("Grüße, naïve Señor! 100 € ") + QStringLiteral("你好世界日本語 ") +
                       QString::fromUtf8("\U0001F44D\U0001F3FD "
                                         "\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466 ") +
                       QStringLiteral("שלום עולם Привет мир ещё Żółć ok!");

/// A plain editor of Qt that has the keyboard.
class QtEditor {
public:
    QtEditor() {
        edit_.setGeometry(50, 50, 500, 200);
        edit_.show();
        isReady_ = waitFor([this] { return edit_.windowHandle() && edit_.windowHandle()->isExposed(); });
        isReady_ =
            isReady_ && waitFor([this] { return server_.focus(static_cast<xcb_window_t>(edit_.winId())); });
        isReady_ = isReady_ && waitFor([this] { return edit_.hasFocus(); });
    }

    bool isReady() const { return isReady_; }
    void clear() { edit_.clear(); }
    QString text() const { return edit_.toPlainText(); }
    bool receives(const QString& expected) {
        return waitFor([&] { return text() == expected; });
    }

private:
    QPlainTextEdit edit_;
    XServer server_;
    bool isReady_ = false;
};

class X11Typing : public ::testing::Test {
protected:
    void type(const QString& text) { input_->typeText(text.toStdString()); }

    XServer server_;
    std::vector<std::uint8_t> keymapsBefore_ = server_.keymaps();
    std::optional<X11Input> input_{std::in_place};
};

constexpr int runs = 10;

TEST_F(X11Typing, SampleHasSeventyEightCodePoints) {
    EXPECT_EQ(sample.toUcs4().size(), 78);
}

TEST_F(X11Typing, ArrivesExactlyInAQtWindowTenTimesOfTen) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    for (int run = 0; run < runs; ++run) {
        editor.clear();
        type(sample);
        ASSERT_TRUE(editor.receives(sample)) << "run " << run << ": " << editor.text().toStdString();
    }
}

TEST_F(X11Typing, ArrivesExactlyInAGtkWindowTenTimesOfTen) {
    QProcess entry;
    entry.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    entry.start(GTK_ENTRY, QStringList());
    QString last;
    xcb_window_t window = XCB_NONE;
    const auto read = [&] {
        while (entry.canReadLine()) {
            const QByteArray array = "[" + entry.readLine() + "]";
            const QJsonValue value = QJsonDocument::fromJson(array)[0];
            if (value.isString()) {
                last = value.toString();
            } else {
                window = static_cast<xcb_window_t>(value.toInteger());
            }
        }
    };
    ASSERT_TRUE(waitFor([&] {
        read();
        return window != XCB_NONE;
    }));
    ASSERT_TRUE(waitFor([&] { return server_.focus(window); }));
    for (int run = 0; run < runs; ++run) {
        type(sample);
        ASSERT_TRUE(waitFor([&] {
            read();
            return last == sample;
        })) << "run "
            << run << ": " << last.toStdString();
        entry.write("empty\n");
        ASSERT_TRUE(waitFor([&] {
            read();
            return last.isEmpty();
        }));
    }
    entry.closeWriteChannel();
    EXPECT_TRUE(entry.waitForFinished(5000));
}

TEST_F(X11Typing, ArrivesExactlyInATerminalTenTimesOfTen) {
    QTemporaryDir folder;
    const QString linesPath = folder.filePath("lines");
    const QString windowPath = folder.filePath("window");
    QProcess terminal;
    terminal.setProcessChannelMode(QProcess::ForwardedChannels);
    terminal.start("xterm",
                   {"-u8", "-e", "sh", "-c",
                    "stty -echo; echo $WINDOWID > \"$1.part\"; mv \"$1.part\" \"$1\"; exec cat > \"$2\"", "sh",
                    windowPath, linesPath});
    ASSERT_TRUE(waitFor([&] { return QFileInfo::exists(windowPath); }));
    QFile windowFile(windowPath);
    ASSERT_TRUE(windowFile.open(QFile::ReadOnly));
    const xcb_window_t window = windowFile.readAll().trimmed().toUInt();
    ASSERT_TRUE(waitFor([&] { return server_.focus(window); }));

    QByteArray expected;
    QByteArray lines;
    for (int run = 0; run < runs; ++run) {
        type(sample + '\n');
        expected += sample.toUtf8() + '\n';
        ASSERT_TRUE(waitFor([&] {
            QFile file(linesPath);
            lines = file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
            return lines == expected;
        })) << "run "
            << run << ": " << lines.toStdString();
    }
    terminal.terminate();
    EXPECT_TRUE(terminal.waitForFinished(5000));
}

TEST_F(X11Typing, ReturnsWithoutWaitingForTheKeymap) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    const auto start = std::chrono::steady_clock::now();
    type(sample);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20ms);
    EXPECT_TRUE(editor.receives(sample));
}

TEST_F(X11Typing, TypesMoreCharactersThanThereAreUnusedKeys) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    QString text;
    for (char16_t character = 0x4E00; character < 0x4E00 + 150; ++character) {
        text += QChar(character);
    }
    type(text + text);
    EXPECT_TRUE(editor.receives(text + text)) << editor.text().toStdString();
}

/// Costs next to nothing for each key, unlike an editor.
class KeyCollector : public QWidget {
public:
    QString text;

protected:
    void keyPressEvent(QKeyEvent* event) override { text += event->text(); }
};

TEST_F(X11Typing, KeepsANoBreakSpaceApartFromABlank) {
    // An editor shows both as blanks.
    KeyCollector collector;
    collector.show();
    ASSERT_TRUE(waitFor([&] { return server_.focus(static_cast<xcb_window_t>(collector.winId())); }));
    const QString text = QStringLiteral("a\u00A0b c\u00A0\u00A0");
    type(text);
    ASSERT_TRUE(waitFor([&] { return collector.text.size() >= text.size(); }));
    EXPECT_EQ(collector.text.toStdString(), text.toStdString());
}

TEST_F(X11Typing, TakesAtMostTwoMillisecondsForEachNewCharacter) {
    KeyCollector collector;
    collector.show();
    ASSERT_TRUE(waitFor([&] { return server_.focus(static_cast<xcb_window_t>(collector.winId())); }));
    constexpr int count = 1500;
    double best = 1000;
    // Other work on the machine may slow some of the tries down.
    for (char16_t first = 0x4E00; first < 0x4E00 + 4 * count && best > 2; first += count) {
        collector.text.clear();
        QString text;
        for (char16_t offset = 0; offset < count; ++offset) {
            text += QChar(char16_t(first + offset));
        }
        const auto start = std::chrono::steady_clock::now();
        type(text);
        ASSERT_TRUE(waitFor([&] { return collector.text.size() >= count; }, 60s));
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(collector.text.toStdString(), text.toStdString());
        best = std::min(best, taken.count() / count);
    }
    EXPECT_LE(best, 2);
}

TEST_F(X11Typing, WaitsForAProgramThatIsTooBusyToReadItsKeys) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    QString first;
    QString second;
    for (char16_t offset = 0; offset < 150; ++offset) {
        first += QChar(u'\u4E00' + offset);
        second += QChar(u'\u5E00' + offset);
    }
    type(first + second);
    // The editor lives on this thread, and reads nothing meanwhile.
    std::this_thread::sleep_for(1500ms);
    EXPECT_TRUE(editor.receives(first + second)) << editor.text().toStdString();
}

TEST_F(X11Typing, LeavesTheKeysOnLoanUntilABusyProgramHasReadThem) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    const QString text = QStringLiteral("你好世界");
    type(text);
    std::this_thread::sleep_for(3s);
    EXPECT_TRUE(editor.receives(text)) << editor.text().toStdString();
    EXPECT_TRUE(waitFor([&] { return server_.keymaps() == keymapsBefore_; }));
}

TEST_F(X11Typing, TypesPlainTextWithoutTouchingTheKeymap) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    // The common keyboard takes over the map of the one used last, and only with its next event: the first text
    // brings that about.
    const QString text = "The quick brown fox: 12*3 (\"ok\")\tJumps\nOver";
    type(text);
    ASSERT_TRUE(editor.receives(text)) << editor.text().toStdString();
    const auto keymaps = server_.keymaps();
    type(text);
    EXPECT_TRUE(editor.receives(text + text)) << editor.text().toStdString();
    EXPECT_EQ(server_.keymaps(), keymaps);
}

TEST_F(X11Typing, TypesLineBreaksOnceAndLeavesOtherControlCharactersOut) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    input_->typeText(std::string_view("a\r\nb\rc\n\x1B\0d", 10));
    EXPECT_TRUE(editor.receives("a\nb\nc\nd")) << editor.text().toStdString();
}

TEST_F(X11Typing, KeepsTheCaseWhileCapsLockIsOn) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    server_.setCapsLocked(true);
    type("aBc ж Ж");
    EXPECT_TRUE(editor.receives("aBc ж Ж")) << editor.text().toStdString();
    EXPECT_TRUE(waitFor([&] { return server_.isCapsLocked(); }));
    server_.setCapsLocked(false);
}

TEST_F(X11Typing, ArrivesAsTextWhileTheUserHoldsModifiers) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    for (const char* modifier : {"Control_L", "Alt_L", "Super_L", "Shift_L"}) {
        editor.clear();
        ASSERT_EQ(QProcess::execute("xdotool", {"keydown", modifier}), 0);
        type("aB1ж");
        EXPECT_TRUE(editor.receives("aB1ж")) << modifier << ": " << editor.text().toStdString();
        ASSERT_EQ(QProcess::execute("xdotool", {"keyup", modifier}), 0);
    }
    EXPECT_FALSE(server_.isAnyKeyDown());
}

TEST_F(X11Typing, TypesInTheOrderOfTheCalls) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    QString expected;
    for (const QString& text : {QString("one "), QString("二 "), QString("three "), QString("四 ")}) {
        type(text);
        expected += text;
    }
    input_->pressKey(Key::deleteBackward, {});
    type("!");
    EXPECT_TRUE(editor.receives(expected.chopped(1) + '!')) << editor.text().toStdString();
}

TEST_F(X11Typing, GivesTheKeysBackAfterAWhile) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    type(sample);
    ASSERT_TRUE(editor.receives(sample));
    EXPECT_NE(server_.keymaps(), keymapsBefore_);
    EXPECT_TRUE(waitFor([&] { return server_.keymaps() == keymapsBefore_; }));
}

TEST_F(X11Typing, GivesTheKeysBackAtTheEnd) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    type(sample);
    ASSERT_TRUE(editor.receives(sample));
    input_.reset();
    EXPECT_EQ(server_.keymaps(), keymapsBefore_);
    // What was typed is not taken back by that.
    processPending();
    EXPECT_EQ(editor.text(), sample);
}

TEST_F(X11Typing, LeavesAKeymapAloneThatSomebodyElseHasLoaded) {
    QtEditor editor;
    ASSERT_TRUE(editor.isReady());
    type("漢字");
    ASSERT_TRUE(editor.receives("漢字"));
    ASSERT_EQ(QProcess::execute("setxkbmap", {"de"}), 0);
    const auto german = server_.keymaps();
    editor.clear();
    type("zy");
    EXPECT_TRUE(editor.receives("zy")) << editor.text().toStdString();
    input_.reset();
    EXPECT_EQ(server_.keymaps(), german);
    ASSERT_EQ(QProcess::execute("setxkbmap", {"us"}), 0);
}

TEST(X11TypingKilled, NextStartGivesTheKeysBack) {
    XServer server;
    // A keyboard that has typed before leaves the core keymap in its lasting form.
    const auto before = server.keymaps();
    for (const auto life : {5ms, 60ms, 200ms, 700ms}) {
        QProcess typist;
        typist.start(TYPIST, QStringList());
        ASSERT_TRUE(waitFor([&] { return typist.canReadLine(); }));
        if (life >= 200ms) {
            ASSERT_TRUE(waitFor([&] { return server.keymaps() != before; }));
        }
        const QDeadlineTimer deadline(life);
        waitFor([&] { return deadline.hasExpired(); });
        ::kill(static_cast<pid_t>(typist.processId()), SIGKILL);
        ASSERT_TRUE(typist.waitForFinished(5000));
        if (life >= 200ms) {
            ASSERT_NE(server.keymaps(), before) << "killed too late to prove anything";
        }

        X11Input next;
        EXPECT_TRUE(next.isTrusted());
        EXPECT_TRUE(waitFor([&] { return server.keymaps() == before; }));
        EXPECT_FALSE(server.isAnyKeyDown());
    }
}

} // namespace

} // namespace velloway::test
