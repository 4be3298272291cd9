#include "desktop/TemporaryFolder.h"
#include "ui/ViewTest.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>

#include <fstream>

namespace velloway::test {
namespace {

class FileDropViewTest : public ViewTest {
protected:
    FileDropViewTest() {
        open(5);
        takeSent();
    }

    FileTransferRecord& add(FileTransferRecord record) {
        record.id = Uuid::random();
        record.date = on.host.time;
        program.historyStore().addFileTransfer(record);
        settle();
        return last_ = record;
    }
    /// The open panel, or null.
    static QFileDialog* dialog() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<QFileDialog*>(widget); found && found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }
    QFileDialog* openPanel() {
        click("action");
        wait([] { return dialog() != nullptr; });
        return dialog();
    }
    static void choose(QFileDialog& panel, const QString& names) {
        auto* field = panel.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(field, nullptr);
        field->setText(names);
        QTest::keyClick(field, Qt::Key_Return);
    }

    FileTransferRecord last_;
};

TEST_F(FileDropViewTest, ARunningTransferShowsItsShareAndAFinishedOneItsFacts) {
    add({.fileName = "running.bin", .fileSize = 1000, .isOutgoing = true, .progress = 0.999});
    EXPECT_EQ(all("transfer").at(0)->property("percentage").toString(), "99%");
    EXPECT_TRUE(shows("progress"));
    EXPECT_EQ(all("transfer").at(0)->property("symbol").toString(), "paperplane.fill");
    program.historyStore().updateFileTransfer(last_.id, 1, true, std::nullopt);
    settle();
    EXPECT_FALSE(shows("progress"));
    EXPECT_EQ(all("transfer").at(0)->property("detail").toString(), QStringLiteral("Sent • 1 KB • 03:43"));
}

TEST_F(FileDropViewTest, TheFolderButtonIsThereOnlyWithAFileAndRevealsIt) {
    add({.fileName = "a", .fileSize = 1});
    EXPECT_FALSE(shows("reveal"));
    add({.fileName = "b", .url = "/tmp/b", .fileSize = 1, .progress = 1, .isCompleted = true});
    ASSERT_EQ(all("reveal").size(), 1u);
    EXPECT_EQ(part("reveal")->property("tip").toString(), "Show in Finder");
    click("reveal");
    EXPECT_THAT(on.workspace.revealed, ElementsAre(std::filesystem::path("/tmp/b")));
}

TEST_F(FileDropViewTest, ClearHistoryIsHiddenWhileThereIsNothingToClear) {
    EXPECT_FALSE(shows("clearHistory"));
    add({.fileName = "a", .fileSize = 1});
    click("clearHistory");
    EXPECT_THAT(all("transfer"), IsEmpty());
    EXPECT_FALSE(shows("clearHistory"));
}

TEST_F(FileDropViewTest, FilesChosenInThePanelAreSentInItsOrder) {
    const TemporaryFolder folder;
    for (const char* name : {"a.txt", "b.txt", "c.txt", "d.txt", "e.txt"}) {
        std::ofstream(folder.path() / name) << "hello";
        on.files.put(folder.path() / name, "hello");
    }
    QFileDialog* panel = openPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_FALSE(panel->windowModality() == Qt::NonModal && panel->parentWidget()) << "it stands by itself";
    panel->setDirectory(QString::fromStdString(folder.path().string()));
    choose(*panel, R"("c.txt" "a.txt" "e.txt" "b.txt" "d.txt")");
    ASSERT_TRUE(wait([] { return dialog() == nullptr; }));
    ASSERT_TRUE(wait([&] { return program.historyStore().fileTransfers.get().size() == 5; }));
    std::vector<std::string> names;
    for (const FileTransferRecord& record : program.historyStore().fileTransfers.get()) {
        names.insert(names.begin(), record.fileName);
    }
    EXPECT_THAT(names, ElementsAre("c.txt", "a.txt", "e.txt", "b.txt", "d.txt"));
}

TEST_F(FileDropViewTest, CancellingThePanelSendsNothing) {
    QFileDialog* panel = openPanel();
    ASSERT_NE(panel, nullptr);
    QTest::keyClick(panel, Qt::Key_Escape);
    ASSERT_TRUE(wait([] { return dialog() == nullptr; }));
    settle();
    EXPECT_THAT(program.historyStore().fileTransfers.get(), IsEmpty());
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(FileDropViewTest, AFolderCannotBeChosen) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "inside");
    QFileDialog* panel = openPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->fileMode(), QFileDialog::ExistingFiles);
    panel->setDirectory(QString::fromStdString(folder.path().string()));
    choose(*panel, "inside");
    EXPECT_TRUE(wait([&] { return panel->directory().dirName() == "inside"; })) << "a folder is entered";
    EXPECT_EQ(dialog(), panel);
    panel->reject();
    settle();
    EXPECT_THAT(takeSent(), IsEmpty());
}

class ClipboardViewTest : public ViewTest {
protected:
    ClipboardViewTest() {
        open(6);
        takeSent();
    }
};

TEST_F(ClipboardViewTest, AnEmptyListSaysSoAndHidesClearHistory) {
    EXPECT_TRUE(shows("empty"));
    EXPECT_FALSE(shows("clearHistory"));
    program.historyStore().addClipboard("x");
    settle();
    EXPECT_FALSE(shows("empty"));
    click("clearHistory");
    EXPECT_TRUE(shows("empty"));
}

TEST_F(ClipboardViewTest, TheButtonSendsTheClipboardIfItHasAText) {
    click("action");
    EXPECT_THAT(takeSent(), IsEmpty());
    on.pasteboard.content = "";
    click("action");
    EXPECT_THAT(takeSent(), IsEmpty());
    on.pasteboard.content = "hello";
    click("action");
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"clipboard","text":"hello"})"));
}

TEST_F(ClipboardViewTest, ARowIsCopiedBack) {
    program.historyStore().addClipboard("older");
    program.historyStore().addClipboard("newer");
    settle();
    ASSERT_EQ(all("copy").size(), 2u);
    EXPECT_EQ(all("copy").at(1)->property("tip").toString(), "Copy to Mac Clipboard");
    click(all("copy").at(1));
    EXPECT_EQ(on.pasteboard.content, "older");
    EXPECT_EQ(all("clipboardRow").size(), 2u);
}

TEST_F(ClipboardViewTest, ALongTextShowsTenLinesAndIsSelectedWhole) {
    std::string lines;
    for (int i = 1; i <= 30; ++i) {
        lines += "line " + std::to_string(i) + "\n";
    }
    program.historyStore().addClipboard(lines);
    settle();
    QQuickItem* content = part("clipboardText");
    const double line = content->property("contentHeight").toDouble() / 31;
    EXPECT_NEAR(content->parentItem()->height(), 10 * line, line / 2);
    EXPECT_TRUE(content->parentItem()->clip());
    click(content->parentItem());
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(content->property("selectedText").toString().toStdString(), lines);
}

TEST_F(ClipboardViewTest, CopyingToTheEndOfALongTextCopiesTheRestToo) {
    std::string text;
    while (text.size() < 100'000) {
        text += std::to_string(text.size()) + ' ';
    }
    program.historyStore().addClipboard("another");
    program.historyStore().addClipboard(text);
    settle();
    QQuickItem* content = part("clipboardText");
    EXPECT_LT(content->property("length").toInt(), 10'000) << "only the head is laid out";
    content->forceActiveFocus();
    const auto copied = [&](const char* what) {
        QMetaObject::invokeMethod(content, what);
        key(Qt::Key_C, Qt::ControlModifier);
        return QGuiApplication::clipboard()->text().toStdString();
    };
    EXPECT_EQ(copied("selectAll"), text);
    QMetaObject::invokeMethod(content, "select", Q_ARG(int, 10),
                              Q_ARG(int, content->property("length").toInt()));
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), text.substr(10));
}

} // namespace
} // namespace velloway::test
