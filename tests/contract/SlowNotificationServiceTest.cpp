#include "contract/LinuxUserNotificationCenterFixture.h"

#include <algorithm>
#include <chrono>
#include <map>

namespace velloway::test {
namespace {

/// The main queue, on which no time passes but when the test says so.
class MainQueueWithoutTime : public DispatchQueue {
public:
    void async(Job job) override { main_.async(std::move(job)); }
    void asyncAfter(std::chrono::nanoseconds delay, Job job) override {
        later_.emplace(now_ + delay, std::move(job));
    }
    bool isCurrent() const override { return main_.isCurrent(); }

    void pass(std::chrono::nanoseconds time) {
        now_ += time;
        while (!later_.empty() && later_.begin()->first <= now_) {
            later_.extract(later_.begin()).mapped()();
        }
    }

private:
    QtMainQueue main_;
    std::chrono::nanoseconds now_{0};
    std::multimap<std::chrono::nanoseconds, Job> later_;
};

class SlowNotificationServiceTest : public LinuxUserNotificationCenterTest {
protected:
    SlowNotificationServiceTest() {
        slowly_.setDelegate(&delegate_);
        start({"body", "actions"});
        service_->holdsAnswers = true;
    }

    /// On the centre for which no time passes.
    void addSlowly(const std::string& identifier) {
        slowly_.add(plain(identifier), [this](const auto& error) { errors_.push_back(error); });
    }
    bool isHeld(std::size_t count) {
        return waitFor([=, this] { return service_->held.size() == count; });
    }
    /// As `settle`, while what the other centre sends is held.
    void settleHeld() {
        service_->holdsAnswers = false;
        const int left = std::exchange(service_->errorsLeft, 0);
        settle();
        service_->errorsLeft = left;
        service_->holdsAnswers = true;
    }
    bool isAnswered(std::size_t count) {
        return waitFor([=, this] { return errors_.size() == count; });
    }
    /// Those that stand, which stay however long the rest of the test takes.
    static std::size_t banners() {
        const auto standing = visible<NotificationBanner>();
        for (auto* banner : standing) {
            banner->setLifetime(std::chrono::hours(1));
        }
        return standing.size();
    }
    bool allWentWell() const {
        return std::count(errors_.begin(), errors_.end(), std::nullopt) == std::ssize(errors_);
    }

    MainQueueWithoutTime time_;
    LinuxUserNotificationCenter slowly_{time_};
};

TEST_F(SlowNotificationServiceTest, AsLongAsItAnswersItIsWaitedFor) {
    constexpr std::size_t count = 40;
    for (std::size_t i = 0; i < count; ++i) {
        addSlowly("identifier " + std::to_string(i));
    }
    ASSERT_TRUE(isHeld(16));
    for (std::size_t answered = 1; answered <= count; ++answered) {
        service_->answerHeld(1);
        ASSERT_TRUE(isAnswered(answered));
        ASSERT_TRUE(isHeld(std::min<std::size_t>(16, count - answered)));
        time_.pass(std::chrono::seconds(6));
    }
    EXPECT_TRUE(allWentWell());
    EXPECT_EQ(service_->calls.size(), count);
    EXPECT_EQ(service_->onScreen.size(), count);
    EXPECT_EQ(banners(), 0u);
}

TEST_F(SlowNotificationServiceTest, WhatItShowsAfterOurBannerIsTakenBackThere) {
    addSlowly("key");
    ASSERT_TRUE(isHeld(1));
    time_.pass(serviceTimeout);
    ASSERT_TRUE(isAnswered(1));
    EXPECT_EQ(banners(), 1u);
    service_->answerHeld();
    EXPECT_TRUE(waitFor([&] { return service_->onScreen.empty(); }));
    EXPECT_EQ(banners(), 1u);
    EXPECT_EQ(errors_.size(), 1u);
    EXPECT_TRUE(delegate_.responses.empty());
}

TEST_F(SlowNotificationServiceTest, TheLateAnswerLeavesALaterNotificationOfTheSameIdentifierAlone) {
    addSlowly("key");
    ASSERT_TRUE(isHeld(1));
    time_.pass(serviceTimeout);
    ASSERT_TRUE(isAnswered(1));
    addSlowly("key");
    ASSERT_TRUE(isHeld(2));
    service_->answerHeld(1);
    ASSERT_TRUE(waitFor([&] { return service_->closeCalls.size() == 1; }));
    EXPECT_EQ(service_->closeCalls[0], service_->calls[0].id);
    EXPECT_EQ(banners(), 1u);
    service_->answerHeld();
    ASSERT_TRUE(isAnswered(2));
    EXPECT_EQ(banners(), 0u);
    ASSERT_EQ(service_->onScreen.size(), 1u);
    EXPECT_EQ(service_->onScreen.begin()->first, service_->calls[1].id);
}

TEST_F(SlowNotificationServiceTest, OneAnswerThatNeverComesCostsNoOtherNotificationItsPlace) {
    addSlowly("forgotten");
    ASSERT_TRUE(isHeld(1));
    service_->holdsAnswers = false;
    addSlowly("shown");
    ASSERT_TRUE(isAnswered(1));
    time_.pass(serviceTimeout);
    ASSERT_TRUE(isAnswered(2));
    EXPECT_EQ(banners(), 1u);
    addSlowly("next");
    ASSERT_TRUE(isAnswered(3));
    EXPECT_EQ(service_->capabilityQuestions, 2);
    EXPECT_EQ(service_->calls.size(), 3u);
    EXPECT_EQ(banners(), 1u);
    EXPECT_TRUE(allWentWell());
}

TEST_F(SlowNotificationServiceTest, WhileItIsSilentItIsAskedOnceAndOurBannersShowWhatComes) {
    service_->holdsCapabilities = true;
    addSlowly("one");
    ASSERT_TRUE(isHeld(1));
    time_.pass(serviceTimeout);
    ASSERT_TRUE(isAnswered(1));
    addSlowly("two");
    ASSERT_TRUE(isAnswered(2));
    EXPECT_EQ(banners(), 2u);
    EXPECT_EQ(service_->capabilityQuestions, 1);
    EXPECT_TRUE(service_->calls.empty());

    service_->holdsCapabilities = service_->holdsAnswers = false;
    service_->answerHeld();
    ASSERT_TRUE(waitFor([&] {
        addSlowly("three");
        return isAnswered(errors_.size() + 1) && service_->onScreen.size() == 3;
    }));
    // The service has them before we know that it has.
    EXPECT_TRUE(waitFor([] { return banners() == 0; }));
    EXPECT_TRUE(allWentWell());
}

TEST_F(SlowNotificationServiceTest, ItsSuccessorIsNotTakenForSilent) {
    service_->holdsCapabilities = true;
    addSlowly("one");
    ASSERT_TRUE(isHeld(1));
    time_.pass(serviceTimeout);
    ASSERT_TRUE(isAnswered(1));
    service_.reset();
    start({"body", "actions"});
    ASSERT_TRUE(waitFor([&] {
        addSlowly("two");
        return isAnswered(errors_.size() + 1) && service_->onScreen.size() == 2;
    }));
    EXPECT_TRUE(waitFor([] { return banners() == 0; }));
}

TEST_F(SlowNotificationServiceTest, WhatOurBannerShowsOutlivesTheServiceAndGoesToTheNext) {
    addSlowly("key");
    ASSERT_TRUE(isHeld(1));
    time_.pass(serviceTimeout);
    ASSERT_TRUE(isAnswered(1));
    service_.reset();
    ASSERT_TRUE(waitFor([] { return banners() == 1; }));
    start({"body", "actions"});
    ASSERT_TRUE(waitFor([&] { return service_->onScreen.size() == 1; }));
    ASSERT_TRUE(waitFor([] { return banners() == 0; }));
    EXPECT_EQ(service_->calls.size(), 1u);
}

TEST_F(SlowNotificationServiceTest, AfterOneTooManyNothingIsSentForASecond) {
    service_->holdsAnswers = false;
    service_->errorName = "org.freedesktop.Notifications.Error.ExcessNotificationGeneration";
    service_->errorsLeft = 1;
    addSlowly("key");
    ASSERT_TRUE(waitFor([&] { return service_->errorsLeft == 0; }));
    settle();
    addSlowly("next");
    settle();
    time_.pass(std::chrono::milliseconds(999));
    settle();
    EXPECT_EQ(timesShown().count("File Received"), 1u);
    time_.pass(std::chrono::milliseconds(1));
    ASSERT_TRUE(waitFor([&] { return errors_.size() == 5; }));
    EXPECT_EQ(timesShown().at("File Received"), 5);
    EXPECT_EQ(banners(), 0u);
}

TEST_F(SlowNotificationServiceTest, APauseIsNotCutShortByTheOneBefore) {
    service_->errorName = "org.freedesktop.Notifications.Error.ExcessNotificationGeneration";
    service_->errorsLeft = 2;
    addSlowly("one");
    addSlowly("two");
    ASSERT_TRUE(isHeld(2));
    service_->answerHeld(1);
    settleHeld();
    time_.pass(std::chrono::milliseconds(500));
    service_->answerHeld(1);
    settleHeld();
    service_->errorsLeft = 2;
    time_.pass(std::chrono::milliseconds(500));
    ASSERT_TRUE(isHeld(2));
    service_->answerHeld();
    settleHeld();
    time_.pass(std::chrono::milliseconds(500));
    settleHeld();
    EXPECT_TRUE(service_->held.empty());
    time_.pass(std::chrono::milliseconds(500));
    EXPECT_TRUE(isHeld(2));
}

TEST_F(SlowNotificationServiceTest, WhatIsRemovedMeanwhileIsShownNowhere) {
    addSlowly("key");
    ASSERT_TRUE(isHeld(1));
    slowly_.removeDelivered({"key"});
    time_.async([this] { time_.pass(serviceTimeout); });
    ASSERT_TRUE(isAnswered(1));
    EXPECT_EQ(banners(), 0u);
    service_->answerHeld();
    EXPECT_TRUE(waitFor([&] { return service_->onScreen.empty(); }));
}

TEST_F(SlowNotificationServiceTest, WhereOurBannersAreFullTheServiceKeepsWhatItHas) {
    constexpr std::size_t count = 60;
    for (std::size_t i = 0; i < count; ++i) {
        addSlowly("identifier " + std::to_string(i));
    }
    for (std::size_t held = 16; held < count + 16; held += 16) {
        ASSERT_TRUE(isHeld(std::min(held, count)));
        time_.pass(serviceTimeout);
    }
    ASSERT_TRUE(isAnswered(54));
    EXPECT_EQ(banners(), 4u);
    service_->answerHeld();
    ASSERT_TRUE(isAnswered(count));
    EXPECT_TRUE(allWentWell());
    EXPECT_TRUE(waitFor([&] { return service_->onScreen.size() == count - 54; }));
}

} // namespace
} // namespace velloway::test
