#include "state/HistoryStore.h"
#include "fakes/FakeDesktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {

namespace {

class HistoryStoreTest : public testing::Test {
protected:
    static NotifPayload payload(std::string body) {
        NotifPayload made;
        made.body = std::move(body);
        return made;
    }
    static FileTransferRecord transfer(std::string fileName) {
        return {.id = Uuid::random(), .fileName = std::move(fileName), .fileSize = 10};
    }

    FakeHost host;
    HistoryStore store{host};
};

TEST_F(HistoryStoreTest, StartsWithNothing) {
    EXPECT_TRUE(store.items.get().empty());
    EXPECT_TRUE(store.availableSIMs.get().empty());
    EXPECT_TRUE(store.fileTransfers.get().empty());
    EXPECT_TRUE(store.clipboardHistory.get().empty());
    EXPECT_FALSE(store.connectedRemoteIP.get());
    EXPECT_FALSE(store.connectedWifiName.get());
    EXPECT_FALSE(store.connectedDeviceName.get());
    EXPECT_FALSE(store.batteryLevel.get());
    EXPECT_FALSE(store.isCharging.get());
    EXPECT_FALSE(store.incomingCallInfo.get());
}

TEST_F(HistoryStoreTest, PutsTheNewestFirst) {
    store.add(payload("old"));
    store.add(payload("new"));
    store.addFileTransfer(transfer("old"));
    store.addFileTransfer(transfer("new"));
    store.addClipboard("old");
    store.addClipboard("new");
    EXPECT_EQ(store.items.get().front().body, "new");
    EXPECT_EQ(store.fileTransfers.get().front().fileName, "new");
    EXPECT_EQ(store.clipboardHistory.get().front().text, "new");
}

TEST_F(HistoryStoreTest, StampsAClipboardTextWithThePresentTime) {
    store.addClipboard("text");
    EXPECT_TRUE(store.clipboardHistory.get().front().date == host.time);
}

TEST_F(HistoryStoreTest, KeepsTheSameTextTwiceUnderTwoIdentities) {
    store.addClipboard("same");
    store.addClipboard("same");
    ASSERT_EQ(store.clipboardHistory.get().size(), 2U);
    EXPECT_NE(store.clipboardHistory.get()[0].id, store.clipboardHistory.get()[1].id);
}

TEST_F(HistoryStoreTest, KeepsEqualElementsOfEveryListApart) {
    const NotifPayload payload{.app = "Chat", .title = "Anna", .body = "Hi", .key = "k"};
    const FileTransferRecord file = transfer("a");
    for (int i = 0; i < 2; ++i) {
        store.add(payload);
        store.addFileTransfer(file);
        store.addClipboard("text");
    }
    EXPECT_EQ(store.items.get(), (std::vector<NotifPayload>{payload, payload}));
    EXPECT_EQ(store.fileTransfers.get(), (std::vector<FileTransferRecord>{file, file}));
    EXPECT_EQ(store.clipboardHistory.get().size(), 2U);
}

TEST_F(HistoryStoreTest, Keeps100OfEachKindAndDropsTheOldest) {
    for (int i = 1; i <= 100; ++i) {
        store.add(payload(std::to_string(i)));
        store.addFileTransfer(transfer(std::to_string(i)));
        store.addClipboard(std::to_string(i));
    }
    EXPECT_EQ(store.items.get().size(), 100U);
    EXPECT_EQ(store.items.get().back().body, "1");

    store.add(payload("101"));
    EXPECT_EQ(store.items.get().size(), 100U);
    EXPECT_EQ(store.items.get().front().body, "101");
    EXPECT_EQ(store.items.get().back().body, "2");
    EXPECT_EQ(store.fileTransfers.get().back().fileName, "1");
    EXPECT_EQ(store.clipboardHistory.get().back().text, "1");

    store.addFileTransfer(transfer("101"));
    store.addClipboard("101");
    EXPECT_EQ(store.fileTransfers.get().size(), 100U);
    EXPECT_EQ(store.fileTransfers.get().back().fileName, "2");
    EXPECT_EQ(store.clipboardHistory.get().size(), 100U);
    EXPECT_EQ(store.clipboardHistory.get().back().text, "2");
}

TEST_F(HistoryStoreTest, NotifiesOnceForAnAdditionAndTwiceForOneThatTrims) {
    std::vector<std::size_t> sizes;
    const auto subscription = store.items.observe([&](const auto& items) { sizes.push_back(items.size()); });
    for (int i = 0; i < 101; ++i) {
        store.add(payload(""));
    }
    ASSERT_EQ(sizes.size(), 102U);
    EXPECT_EQ(sizes[99], 100U);
    EXPECT_EQ(sizes[100], 101U);
    EXPECT_EQ(sizes[101], 100U);
}

TEST_F(HistoryStoreTest, ChangesATransferInPlace) {
    store.addFileTransfer(transfer("a"));
    store.addFileTransfer(transfer("b"));
    store.addFileTransfer(transfer("c"));
    const Uuid id = store.fileTransfers.get()[1].id;
    store.updateFileTransfer(id, 0.5, false, "/tmp/b");
    const FileTransferRecord& row = store.fileTransfers.get()[1];
    EXPECT_EQ(row.id, id);
    EXPECT_EQ(row.fileName, "b");
    EXPECT_EQ(row.progress, 0.5);
    EXPECT_FALSE(row.isCompleted);
    EXPECT_EQ(row.url, "/tmp/b");
    EXPECT_EQ(store.fileTransfers.get()[0].progress, 0);
    EXPECT_EQ(store.fileTransfers.get()[2].progress, 0);
}

TEST_F(HistoryStoreTest, KeepsTheUrlOfATransferWhenNoneIsGiven) {
    store.addFileTransfer(transfer("a"));
    const Uuid id = store.fileTransfers.get().front().id;
    store.updateFileTransfer(id, 0.5, false, "/tmp/a");
    store.updateFileTransfer(id, 1, true, std::nullopt);
    EXPECT_EQ(store.fileTransfers.get().front().url, "/tmp/a");
    EXPECT_TRUE(store.fileTransfers.get().front().isCompleted);
}

TEST_F(HistoryStoreTest, ChangesOnlyTheFirstOfTwoTransfersWithOneIdentity) {
    const FileTransferRecord twin = transfer("a");
    store.addFileTransfer(twin);
    store.addFileTransfer(twin);
    store.updateFileTransfer(twin.id, 1, true, std::nullopt);
    EXPECT_TRUE(store.fileTransfers.get()[0].isCompleted);
    EXPECT_FALSE(store.fileTransfers.get()[1].isCompleted);
}

TEST_F(HistoryStoreTest, PassesOverAnUnknownTransferAndNotifiesNobody) {
    store.addFileTransfer(transfer("a"));
    const auto before = store.fileTransfers.get();
    int notifications = 0;
    const auto subscription = store.fileTransfers.observe([&](const auto&) { ++notifications; });
    store.updateFileTransfer(Uuid::random(), 1, true, "/tmp/a");
    EXPECT_EQ(store.fileTransfers.get(), before);
    EXPECT_EQ(notifications, 0);
    store.updateFileTransfer(before.front().id, 1, true, {});
    EXPECT_EQ(notifications, 1);
}

TEST_F(HistoryStoreTest, ForgetsATransferThatWasTrimmedWhileItRan) {
    const FileTransferRecord running = transfer("running");
    store.addFileTransfer(running);
    for (int i = 0; i < 100; ++i) {
        store.addFileTransfer(transfer("later"));
    }
    const auto before = store.fileTransfers.get();
    store.updateFileTransfer(running.id, 1, true, {});
    EXPECT_EQ(store.fileTransfers.get(), before);
}

TEST_F(HistoryStoreTest, ClearsOneListAndLeavesTheOthers) {
    const auto fill = [this] {
        store.add(payload(""));
        store.addFileTransfer(transfer(""));
        store.addClipboard("");
    };
    const auto sizes = [this] {
        return std::vector<bool>{!store.items.get().empty(), !store.fileTransfers.get().empty(),
                                 !store.clipboardHistory.get().empty()};
    };
    fill();
    store.clear();
    EXPECT_EQ(sizes(), (std::vector<bool>{false, true, true}));
    fill();
    store.clearFileTransfers();
    EXPECT_EQ(sizes(), (std::vector<bool>{true, false, true}));
    fill();
    store.clearClipboard();
    EXPECT_EQ(sizes(), (std::vector<bool>{true, true, false}));
}

TEST_F(HistoryStoreTest, NotifiesOfEveryAssignmentEvenOfAnEqualValue) {
    int notifications = 0;
    const auto subscription = store.incomingCallInfo.observe([&](const auto&) { ++notifications; });
    store.incomingCallInfo.set(IncomingCallInfo{.number = "1"});
    store.incomingCallInfo.set(IncomingCallInfo{.number = "1"});
    store.incomingCallInfo.set(std::nullopt);
    EXPECT_EQ(notifications, 3);
}

} // namespace

} // namespace velloway::test
