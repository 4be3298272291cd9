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
#include <QUrl>

#include <csignal>
#include <memory>
#include <optional>
#include <string>

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

    std::unique_ptr<Pasteboard> pasteboard;
};

TEST_P(PasteboardContract, AnEmptyPasteboardHasNoText) {
    EXPECT_EQ(pasteboard->string(), std::nullopt);
}

TEST_P(PasteboardContract, TextReadsBackWholeWhateverItsScript) {
    for (const char* text : {"hello", "Grüße, 世界 👩‍👩‍👧", "two\nlines\twith\r\nbreaks",
                             "  spaces  ", "<b>no markup</b>", "\xEF\xBB\xBFmark", "\xEF\xBB\xBF"}) {
        set(text);
        EXPECT_EQ(pasteboard->string(), text);
    }
}

TEST_P(PasteboardContract, EmptyTextIsText) {
    set("");
    EXPECT_EQ(pasteboard->string(), "");
}

TEST_P(PasteboardContract, TheLastTextCounts) {
    set("one");
    set("two");
    EXPECT_EQ(pasteboard->string(), "two");
}

TEST_P(PasteboardContract, ClearingTakesTheTextAway) {
    set("one");
    pasteboard->clearContents();
    EXPECT_EQ(pasteboard->string(), std::nullopt);
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

    LinuxPasteboard pasteboard;
    QProcess owner;
};

TEST_F(LinuxPasteboardTest, AnotherProgramReadsWhatWasSetThoughNoWindowWasEverShown) {
    pasteboard.clearContents();
    pasteboard.setString("Grüße, 世界 👋");
    EXPECT_EQ(otherReads(), QByteArray("Grüße, 世界 👋"));
}

TEST_F(LinuxPasteboardTest, TextOfAnotherProgramIsRead) {
    otherOwns("von außen 👋");
    EXPECT_EQ(pasteboard.string(), "von außen 👋");
}

TEST_F(LinuxPasteboardTest, AByteOrderMarkOfAnotherProgramIsPartOfItsText) {
    for (const char* text : {"\xEF\xBB\xBFmark", "no mark", "\xEF\xBB\xBF"}) {
        otherOwns(text, {"-target", "text/plain;charset=utf-8"});
        EXPECT_EQ(pasteboard.string(), text);
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

TEST_F(LinuxPasteboardTest, FiveMebibytesComeInWhole) {
    QByteArray text(5 * 1024 * 1024, 'y');
    text.replace(0, 6, "start ");
    otherOwns(text);
    EXPECT_TRUE(pasteboard.string() == text.toStdString());
}

TEST_F(LinuxPasteboardTest, AnImageAloneHasNoText) {
    otherOwns("\x89PNG\r\n\x1a\n", {"-target", "image/png"});
    EXPECT_EQ(pasteboard.string(), std::nullopt);
}

TEST_F(LinuxPasteboardTest, AddressesOfFilesAloneAreNoText) {
    otherOwns("file:///tmp/a\r\n", {"-target", "text/uri-list"});
    EXPECT_EQ(pasteboard.string(), std::nullopt);
}

TEST_F(LinuxPasteboardTest, WhenTheOwnerHasGoneThereIsNoText) {
    otherOwns("gone soon");
    owner.kill();
    owner.waitForFinished();
    EXPECT_TRUE(waitFor([this] { return !pasteboard.string(); }));
}

TEST_F(LinuxPasteboardTest, AnOwnerThatDoesNotAnswerHoldsTheCallerOnlyForABoundedTime) {
    otherOwns("never answered");
    ::kill(static_cast<pid_t>(owner.processId()), SIGSTOP);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(pasteboard.string(), std::nullopt);
    EXPECT_LT(clock.elapsed(), 11'000);
    ::kill(static_cast<pid_t>(owner.processId()), SIGCONT);
}

} // namespace
} // namespace velloway::test
