#include "tabs/TabHarness.h"
#include "tabs/filedrop/FileDropTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FileDropTabTest : public testing::Test, protected TabHarness {
protected:
    FileTransferRecord record() {
        return {.id = Uuid::random(), .fileName = "a.txt", .fileSize = 1'234'567, .date = on.host.time};
    }
    /// The files that the server could not read, in the order in which they were handed to it.
    std::vector<std::string> triedFiles() {
        on.drain();
        std::vector<std::string> bodies;
        for (const NotificationRequest& request : on.notificationCenter.requests) {
            bodies.push_back(request.content.body);
        }
        return bodies;
    }
};

TEST_F(FileDropTabTest, ARunningTransferShowsItsProgress) {
    FileTransferRecord incoming = record();
    incoming.progress = 0.999;
    const FileTransferRow row = fileTransferRow(incoming, on.host);
    EXPECT_EQ(row.id, incoming.id);
    EXPECT_EQ(row.fileName, "a.txt");
    EXPECT_FALSE(row.isCompleted);
    EXPECT_EQ(row.progress, 0.999);
    EXPECT_EQ(row.percentage, "99%");
    EXPECT_EQ(row.symbol, "arrow.down.circle.fill");
    EXPECT_EQ(row.color, ColorRole::green);
    EXPECT_FALSE(row.showsRevealButton);
}

TEST_F(FileDropTabTest, ThePercentageIsTruncated) {
    FileTransferRecord incoming = record();
    const std::vector<std::pair<double, std::string>> cases{
        {0, "0%"}, {0.009, "0%"}, {0.5, "50%"}, {0.999, "99%"}, {1, "100%"}, {2.5, "250%"}, {1e13, "0%"}};
    for (const auto& [progress, text] : cases) {
        incoming.progress = progress;
        EXPECT_EQ(fileTransferRow(incoming, on.host).percentage, text);
    }
}

TEST_F(FileDropTabTest, AFinishedTransferShowsDirectionSizeAndTime) {
    FileTransferRecord done = record();
    done.isCompleted = true;
    EXPECT_EQ(fileTransferRow(done, on.host).detail, "Received • 1.2 MB • 03:43");
    done.isOutgoing = true;
    done.url = "/tmp/a.txt";
    const FileTransferRow row = fileTransferRow(done, on.host);
    EXPECT_EQ(row.detail, "Sent • 1.2 MB • 03:43");
    EXPECT_EQ(row.symbol, "paperplane.fill");
    EXPECT_EQ(row.color, ColorRole::blue);
    EXPECT_TRUE(row.isCompleted);
    EXPECT_TRUE(row.showsRevealButton);
}

TEST_F(FileDropTabTest, RowsAndTheClearButtonFollowTheStore) {
    int redraws = 0;
    const auto observer = view->fileDrop.transfers.observe([&] { ++redraws; });
    EXPECT_FALSE(view->fileDrop.showsClear());
    store.addFileTransfer(record());
    EXPECT_TRUE(view->fileDrop.showsClear());
    EXPECT_EQ(view->fileDrop.transfers.get().size(), 1u);
    view->fileDrop.clearFileTransfers();
    EXPECT_FALSE(view->fileDrop.showsClear());
    EXPECT_THAT(view->fileDrop.transfers.get(), IsEmpty());
    EXPECT_EQ(redraws, 2);
}

TEST_F(FileDropTabTest, TheFolderButtonRevealsTheFile) {
    FileTransferRecord done = record();
    done.url = "/tmp/a.txt";
    store.addFileTransfer(done);
    FileTransferRecord without = record();
    store.addFileTransfer(without);
    view->fileDrop.revealFile(done.id);
    view->fileDrop.revealFile(without.id);
    view->fileDrop.revealFile(Uuid::random());
    EXPECT_THAT(on.workspace.revealed, ElementsAre("/tmp/a.txt"));
}

TEST_F(FileDropTabTest, TheOpenPanelTakesSeveralFilesAndNoFolders) {
    view->fileDrop.selectFileAndSend();
    ASSERT_TRUE(on.windows.openPanelOptions.has_value());
    EXPECT_TRUE(on.windows.openPanelOptions->allowsMultipleSelection);
    EXPECT_FALSE(on.windows.openPanelOptions->canChooseDirectories);
}

TEST_F(FileDropTabTest, ChosenFilesAreSentInTheOrderOfThePanel) {
    view->fileDrop.selectFileAndSend();
    on.windows.openPanelDone(
        {{"/no such/1.a", "/no such/5.b", "/no such/3.c", "/no such/4.d", "/no such/2.e"}});
    const auto tried = triedFiles();
    ASSERT_EQ(tried.size(), 5u);
    const std::vector<std::string> order{"1.a", "5.b", "3.c", "4.d", "2.e"};
    for (std::size_t i = 0; i < order.size(); ++i) {
        EXPECT_THAT(tried[i], testing::HasSubstr(order[i]));
    }
}

TEST_F(FileDropTabTest, CancellingThePanelSendsNothing) {
    view->fileDrop.selectFileAndSend();
    on.windows.openPanelDone(std::nullopt);
    EXPECT_THAT(triedFiles(), IsEmpty());
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(FileDropTabTest, AnAnswerOfThePanelAfterTheViewHasGoneSendsNothing) {
    view->fileDrop.selectFileAndSend();
    view.reset();
    on.windows.openPanelDone({{"/no such/1.a"}});
    EXPECT_THAT(triedFiles(), IsEmpty());
}

TEST(FileDropTextsTest, AreExact) {
    EXPECT_EQ(
        textOf(fileDropTexts, "description"),
        "Easily move files between your Mac and Android. Received files are saved to your Downloads folder.");
    EXPECT_EQ(textOf(fileDropTexts, "send"), "Send Files...");
    EXPECT_EQ(textOf(fileDropTexts, "revealTooltip"), "Show in Finder");
}

} // namespace
} // namespace velloway::test
