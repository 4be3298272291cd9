#include "desktop/WaitFor.h"
#include "fakes/FakeDesktop.h"
#include "hosts/linux/desktop/LinuxPasteboard.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QProcess>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <csignal>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway::test {
namespace {

class PasteboardContract : public testing::TestWithParam<bool> {
protected:
    PasteboardContract() {
        if (GetParam()) {
            pasteboard = std::make_unique<LinuxPasteboard>();
        } else {
            pasteboard = std::make_unique<FakePasteboard>();
        }
        pasteboard->clearContents();
    }

    void set(std::string_view text) {
        pasteboard->clearContents();
        pasteboard->setString(text);
    }

    std::optional<std::string> read() {
        std::vector<std::optional<std::string>> answers;
        pasteboard->readString([&](auto text) { answers.push_back(std::move(text)); });
        EXPECT_TRUE(waitFor([&] { return !answers.empty(); }));
        return answers.at(0);
    }

    std::unique_ptr<Pasteboard> pasteboard;
};

TEST_P(PasteboardContract, AnswersKeepTheOrderOfTheQuestions) {
    std::vector<std::optional<std::string>> answers;
    const auto keep = [&](auto text) { answers.push_back(std::move(text)); };
    set("one");
    pasteboard->readString([&](auto text) {
        keep(std::move(text));
        pasteboard->readString(keep);
        set("two");
    });
    pasteboard->readString(keep);
    ASSERT_TRUE(waitFor([&] { return answers.size() == 3; }));
    EXPECT_EQ(answers.front(), "one");
    EXPECT_EQ(answers.back(), "two");
}

TEST_P(PasteboardContract, AnEmptyPasteboardHasNoText) {
    EXPECT_EQ(read(), std::nullopt);
}

TEST_P(PasteboardContract, TextReadsBackWholeWhateverItsScript) {
    for (const char* text : {"hello", "Grüße, 世界 👩‍👩‍👧", "two\nlines\twith\r\nbreaks",
                             "  spaces  ", "<b>no markup</b>", "\xEF\xBB\xBFmark", "\xEF\xBB\xBF"}) {
        set(text);
        EXPECT_EQ(read(), text);
    }
}

TEST_P(PasteboardContract, EmptyTextIsText) {
    set("");
    EXPECT_EQ(read(), "");
}

TEST_P(PasteboardContract, TheLastTextCounts) {
    set("one");
    set("two");
    EXPECT_EQ(read(), "two");
}

TEST_P(PasteboardContract, ClearingTakesTheTextAway) {
    set("one");
    pasteboard->clearContents();
    EXPECT_EQ(read(), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(, PasteboardContract, testing::Bool(),
                         [](const auto& it) { return std::string(it.param ? "Linux" : "Fake"); });

/// With a program of somebody else at the other end.
class LinuxPasteboardTest : public testing::Test {
protected:
    ~LinuxPasteboardTest() override {
        owner.kill();
        owner.waitForFinished();
    }

    /// Selects text in another process.
    void otherSelects(const QByteArray& text) {
        QClipboard* const clipboard = QGuiApplication::clipboard();
        clipboard->setText("until somebody else comes", QClipboard::Selection);
        ASSERT_TRUE(clipboard->ownsSelection());
        owner.start("xclip", {"-quiet", "-selection", "primary", "-in"});
        owner.write(text);
        owner.closeWriteChannel();
        ASSERT_TRUE(waitFor([&] { return !clipboard->ownsSelection(); }));
    }

    /// Puts text on the clipboard from another process, which then owns it.
    void otherOwns(const QByteArray& text, const QStringList& extra = {}) {
        QClipboard* const clipboard = QGuiApplication::clipboard();
        clipboard->setText("until somebody else comes");
        ASSERT_TRUE(clipboard->ownsClipboard());
        // The toolkit remembers the formats of the owner before until the server has told it of the new one.
        bool isTold = false;
        const QObject scope;
        QObject::connect(clipboard, &QClipboard::dataChanged, &scope, [&isTold] { isTold = true; });
        owner.start("xclip", QStringList{"-quiet", "-selection", "clipboard", "-in"} + extra);
        owner.write(text);
        owner.closeWriteChannel();
        ASSERT_TRUE(waitFor([&] { return isTold && !clipboard->ownsClipboard(); }));
    }

    /// What another process reads.
    std::optional<QByteArray> otherReads(const QStringList& extra = {}) {
        QProcess reader;
        reader.start("xclip", QStringList{"-selection", "clipboard", "-out"} + extra);
        // The event loop must run: it is this process that answers.
        if (!waitFor([&] { return reader.state() == QProcess::NotRunning; })) {
            reader.kill();
            reader.waitForFinished();
            return std::nullopt;
        }
        return reader.readAllStandardOutput();
    }

    std::optional<std::string>
    read(void (Pasteboard::*from)(std::function<void(std::optional<std::string>)>) = &Pasteboard::readString) {
        std::vector<std::optional<std::string>> answers;
        (pasteboard.*from)([&](auto text) { answers.push_back(std::move(text)); });
        EXPECT_TRUE(answers.empty()) << "answered inside the call";
        EXPECT_TRUE(waitFor([&] { return !answers.empty(); }));
        return answers.empty() ? std::nullopt : answers.at(0);
    }

    LinuxPasteboard pasteboard;
    QProcess owner;
};

TEST_F(LinuxPasteboardTest, AnotherProgramReadsWhatWasSetThoughNoWindowWasEverShown) {
    pasteboard.clearContents();
    pasteboard.setString("Grüße, 世界 👋");
    EXPECT_EQ(otherReads(), QByteArray("Grüße, 世界 👋"));
}

TEST_F(LinuxPasteboardTest, AByteOrderMarkOfAnotherProgramIsPartOfItsText) {
    for (const char* text : {"\xEF\xBB\xBFmark", "no mark", "\xEF\xBB\xBF"}) {
        otherOwns(text, {"-target", "text/plain;charset=utf-8"});
        EXPECT_EQ(read(), text);
        owner.kill();
        owner.waitForFinished();
        otherOwns(text, {"-target", "UTF8_STRING"});
        EXPECT_EQ(read(), text) << "the only name that the owner offers";
        owner.kill();
        owner.waitForFinished();
    }
}

TEST_F(LinuxPasteboardTest, FiveMebibytesGoOutWhole) {
    const std::string text(5 * 1024 * 1024, 'x');
    pasteboard.clearContents();
    pasteboard.setString(text);
    const std::optional<QByteArray> read = otherReads();
    ASSERT_TRUE(read.has_value());
    EXPECT_TRUE(*read == QByteArray::fromStdString(text)) << read->size();
}

TEST_F(LinuxPasteboardTest, AddressesOfFilesAloneAreNoText) {
    otherOwns("file:///tmp/a\r\n", {"-target", "text/uri-list"});
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(LinuxPasteboardTest, WhenTheOwnerHasGoneThereIsNoText) {
    otherOwns("gone soon");
    owner.kill();
    owner.waitForFinished();
    EXPECT_TRUE(waitFor([this] { return !read(); }));
}

TEST_F(LinuxPasteboardTest, TextOfAnotherProgramIsRead) {
    QByteArray large(5 * 1024 * 1024, 'y');
    large.replace(0, 6, "start ");
    for (const QByteArray& text : {QByteArray("von außen 👋"), QByteArray(), large}) {
        otherOwns(text);
        EXPECT_TRUE(read() == text.toStdString()) << text.size();
        owner.kill();
        owner.waitForFinished();
    }
    otherOwns("\x89PNG\r\n\x1a\n", {"-target", "image/png"});
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(LinuxPasteboardTest, WhatIsReadIsTextWithItsByteOrderMark) {
    const std::pair<QByteArray, std::string> texts[] = {{"\xEF\xBB\xBFmark", "\xEF\xBB\xBFmark"},
                                                        {"broken \xC3", "broken \xEF\xBF\xBD"}};
    for (const auto& [bytes, text] : texts) {
        otherOwns(bytes);
        EXPECT_EQ(read(), text);
        owner.kill();
        owner.waitForFinished();
    }
}

TEST_F(LinuxPasteboardTest, TheTextSelectedInAnotherProgramIsReadForItself) {
    pasteboard.clearContents();
    pasteboard.setString("clipboard");
    const QByteArray large(1024 * 1024, 'y');
    for (const QByteArray& text : {QByteArray("von außen 👋"), large}) {
        otherSelects(text);
        EXPECT_TRUE(read(&Pasteboard::readSelection) == text.toStdString()) << text.size();
        owner.kill();
        owner.waitForFinished();
    }
    EXPECT_TRUE(waitFor([this] { return !read(&Pasteboard::readSelection); }));
}

TEST_F(LinuxPasteboardTest, TheTextSelectedInAnOwnWindowIsReadAtOnce) {
    QGuiApplication::clipboard()->setText("selected", QClipboard::Selection);
    std::optional<std::string> text;
    pasteboard.readSelection([&](auto answer) { text = std::move(answer); });
    EXPECT_EQ(text, "selected");
}

TEST_F(LinuxPasteboardTest, AnOwnerThatDoesNotAnswerHoldsNothingUp) {
    otherOwns("never answered");
    ::kill(static_cast<pid_t>(owner.processId()), SIGSTOP);
    QElapsedTimer beat;
    qint64 longestPause = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { longestPause = std::max(longestPause, beat.restart()); });
    beat.start();
    timer.start(10);
    std::vector<std::optional<std::string>> answers;
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 2; ++i) {
        pasteboard.readString([&](auto text) { answers.push_back(std::move(text)); });
    }
    EXPECT_LT(clock.elapsed(), 3000) << "the call itself";
    ASSERT_TRUE(waitFor([&] { return answers.size() == 1; }, std::chrono::seconds(11)));
    EXPECT_EQ(answers[0], std::nullopt);
    EXPECT_LT(longestPause, 3000);
    ::kill(static_cast<pid_t>(owner.processId()), SIGCONT);
    ASSERT_TRUE(waitFor([&] { return answers.size() == 2; }));
    EXPECT_EQ(answers[1], "never answered")
        << "the late answer to the first question is not taken for this one";
}

} // namespace
} // namespace velloway::test
