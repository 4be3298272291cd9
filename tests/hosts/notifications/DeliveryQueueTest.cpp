#include "hosts/linux/notifications/DeliveryQueue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {
namespace {

constexpr int most = 2000;
constexpr auto tooMany = "Too many notifications are waiting to be shown.";

/// Writes down in one list what starts and what ends.
class DeliveryQueueTest : public testing::Test {
protected:
    using Delivery = DeliveryQueue::Delivery;
    using Stage = DeliveryQueue::Stage;
    using Events = std::vector<std::string>;

    static NotificationRequest request(const std::string& identifier, const std::string& body = "") {
        return {identifier, {.title = identifier, .body = body}};
    }
    void add(const std::string& identifier, const std::string& body = "") {
        queue_.add(request(identifier, body), [=, this](const auto& error) {
            events_.push_back("end " + identifier + body + (error ? ": " + *error : ""));
        });
    }
    void addNumbered(int count) {
        for (int i = 0; i < count; ++i) {
            add(std::to_string(i));
        }
        events_.clear();
    }
    Delivery& under(const std::string& identifier) { return *queue_.find(identifier); }
    void finish(const std::string& identifier) { queue_.finish(under(identifier), std::nullopt); }
    /// Takes all that are ready.
    Events taken() {
        Events identifiers;
        while (Delivery* delivery = queue_.takeReady()) {
            identifiers.push_back(delivery->request.identifier);
        }
        return identifiers;
    }

    Events events_;
    DeliveryQueue queue_{[this](Delivery& delivery) {
        events_.push_back("start " + delivery.request.identifier + delivery.request.content.body.string());
    }};
};

TEST_F(DeliveryQueueTest, OfTheReplacementsThatWaitTheLastFollowsOnceTheFirstHasEnded) {
    add("a", "1");
    add("a", "2");
    add("b");
    add("a", "3");
    EXPECT_EQ(events_, (Events{"start a1", "start b", "end a2"}));
    events_.clear();
    queue_.finish(under("a"), "no");
    EXPECT_EQ(events_, (Events{"start a3", "end a1: no"}));
    finish("a");
    EXPECT_EQ(queue_.find("a"), nullptr);
    EXPECT_EQ(events_.back(), "end a3");
    EXPECT_NE(queue_.find("b"), nullptr);
}

TEST_F(DeliveryQueueTest, ADeliveryIsFoundByItsTurnAndStageOnly) {
    add("a");
    const auto turn = under("a").turn;
    EXPECT_EQ(under("a").stage, Stage::askingDelegate);
    EXPECT_EQ(queue_.find("a", turn, Stage::askingDelegate), queue_.find("a"));
    EXPECT_EQ(queue_.find("a", turn + 1, Stage::askingDelegate), nullptr);
    EXPECT_EQ(queue_.find("a", turn, Stage::ready), nullptr);
    EXPECT_EQ(queue_.find("b", turn, Stage::askingDelegate), nullptr);
    queue_.makeReady(under("a"));
    EXPECT_EQ(queue_.find("a", turn, Stage::ready), queue_.find("a"));
    queue_.markSent(*queue_.takeReady());
    EXPECT_EQ(queue_.find("a", turn, Stage::sent), queue_.find("a"));
    finish("a");
    add("a");
    EXPECT_GT(under("a").turn, turn);
}

TEST_F(DeliveryQueueTest, WhatIsReadyIsTakenInTheOrderOfHandOver) {
    EXPECT_FALSE(queue_.hasReady());
    EXPECT_EQ(queue_.takeReady(), nullptr);
    for (const char* identifier : {"c", "a", "b", "d"}) {
        add(identifier);
    }
    for (const char* identifier : {"a", "b", "d", "c"}) {
        queue_.makeReady(under(identifier));
    }
    queue_.removePending("b");
    EXPECT_TRUE(queue_.hasReady());
    EXPECT_EQ(taken(), (Events{"c", "a", "d"}));
    EXPECT_FALSE(queue_.hasReady());
}

TEST_F(DeliveryQueueTest, AReplacementIsHandedOverWhenItsTurnComes) {
    add("a");
    add("a", "again");
    add("b");
    queue_.makeReady(under("b"));
    finish("a");
    queue_.makeReady(under("a"));
    EXPECT_EQ(taken(), (Events{"b", "a"}));
}

TEST_F(DeliveryQueueTest, TheOldestThatIsNotSentGivesWay) {
    addNumbered(most);
    queue_.makeReady(under("0"));
    queue_.markSent(*queue_.takeReady());
    queue_.makeReady(under("2"));
    add("one more");
    add("and one");
    add("7", "replaces, and needs no room");
    const std::string end = std::string(": ") + tooMany;
    EXPECT_EQ(events_, (Events{"end 1" + end, "start one more", "end 2" + end, "start and one"}));
    EXPECT_FALSE(queue_.hasReady());
    EXPECT_NE(queue_.find("0"), nullptr);
    EXPECT_EQ(queue_.find("1"), nullptr);
    EXPECT_NE(queue_.find("3"), nullptr);
}

TEST_F(DeliveryQueueTest, WhatIsToBeSentAgainGivesWayLikeTheOthers) {
    addNumbered(most);
    queue_.markSent(under("0"));
    queue_.makeReady(under("0"));
    add("one more");
    EXPECT_EQ(events_.front(), std::string("end 0: ") + tooMany);
    EXPECT_FALSE(queue_.hasReady());
}

TEST_F(DeliveryQueueTest, WhereAllAreSentTheNewestIsRefused) {
    addNumbered(most);
    for (int i = 0; i < most; ++i) {
        queue_.markSent(under(std::to_string(i)));
    }
    add("one more");
    EXPECT_EQ(events_, (Events{std::string("end one more: ") + tooMany}));
    EXPECT_EQ(queue_.find("one more"), nullptr);
    finish("5");
    add("one more");
    EXPECT_EQ(events_.back(), "start one more");
}

TEST_F(DeliveryQueueTest, AReplacementThatComesUnderWayTakesTheRoomOfTheNext) {
    addNumbered(most);
    add("0", "again");
    events_.clear();
    add("one more");
    const std::string end = std::string(": ") + tooMany;
    EXPECT_EQ(events_, (Events{"start 0again", "end 0" + end, "end 1" + end, "start one more"}));
}

TEST_F(DeliveryQueueTest, AMoveIsReadyAtOnceAndNobodyIsAsked) {
    add("a");
    EXPECT_FALSE(queue_.addMove(request("a"), 1));
    EXPECT_TRUE(queue_.addMove(request("b", "moved"), 6));
    EXPECT_EQ(events_, (Events{"start a"}));
    Delivery* const move = queue_.takeReady();
    ASSERT_EQ(move, queue_.find("b"));
    EXPECT_TRUE(move->isMove);
    EXPECT_EQ(move->options, 6u);
    EXPECT_EQ(move->stage, Stage::ready);
    EXPECT_EQ(move->request.content.body, "moved");
    EXPECT_GT(move->turn, under("a").turn);
    add("b", "replaces");
    EXPECT_EQ(events_.size(), 1u);
    finish("b");
    EXPECT_EQ(events_.back(), "start breplaces");
    EXPECT_FALSE(under("b").isMove);
}

TEST_F(DeliveryQueueTest, AMoveNeverTakesTheRoomOfAnotherAndGivesItsOwn) {
    addNumbered(most - 1);
    EXPECT_TRUE(queue_.addMove(request("moved"), 0));
    EXPECT_FALSE(queue_.addMove(request("moved too"), 0));
    EXPECT_TRUE(events_.empty());
    for (int i = 0; i < most - 1; ++i) {
        queue_.markSent(under(std::to_string(i)));
    }
    add("one more");
    EXPECT_EQ(queue_.find("moved"), nullptr);
    EXPECT_EQ(events_, (Events{"start one more"}));
    EXPECT_FALSE(queue_.hasReady());
}

TEST_F(DeliveryQueueTest, AMoveThatHasEndedGivesNoRoom) {
    ASSERT_TRUE(queue_.addMove(request("moved"), 0));
    queue_.markSent(*queue_.takeReady());
    finish("moved");
    addNumbered(most);
    add("one more");
    EXPECT_EQ(events_, (Events{std::string("end 0: ") + tooMany, "start one more"}));
}

TEST_F(DeliveryQueueTest, WhatIsPendingIsCompletedWhenItIsRemoved) {
    add("a", "1");
    add("a", "2");
    queue_.removePending("never there");
    queue_.removePending("a");
    EXPECT_EQ(events_, (Events{"start a1", "end a2", "end a1"}));
    EXPECT_EQ(queue_.find("a"), nullptr);

    events_.clear();
    add("b", "1");
    queue_.markSent(under("b"));
    add("b", "2");
    queue_.removePending("b");
    EXPECT_EQ(events_, (Events{"start b1", "end b2"}));
    EXPECT_NE(queue_.find("b"), nullptr);
    finish("b");
    EXPECT_EQ(events_.back(), "end b1");
}

TEST_F(DeliveryQueueTest, ACompletionMayBeAbsentAndMayAddTheNext) {
    queue_.add(request("a", "1"), nullptr);
    queue_.add(request("a", "2"), nullptr);
    queue_.add(request("a", "3"), [this](const auto&) { add("a", "4"); });
    finish("a");
    finish("a");
    EXPECT_EQ(events_, (Events{"start a1", "start a3", "start a4"}));
}

} // namespace
} // namespace velloway::test
