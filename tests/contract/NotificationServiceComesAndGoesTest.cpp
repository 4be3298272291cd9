#include "contract/LinuxUserNotificationCenterFixture.h"

#include <thread>

namespace velloway::test {
namespace {

TEST_F(LinuxUserNotificationCenterTest, CapabilitiesAreAskedOnFirstUseAndOncePerOwner) {
    start({"body", "actions"});
    bool answered = false;
    center_.getAuthorizationStatus([&](auto) { answered = true; });
    ASSERT_TRUE(waitFor([&] { return answered; }));
    EXPECT_EQ(service_->capabilityQuestions, 0);
    show(message("one"));
    show(message("two"));
    EXPECT_EQ(service_->capabilityQuestions, 1);
}

TEST_F(LinuxUserNotificationCenterTest, AServiceThatTakesOverIsAskedAgainAndKnowsNoOldIds) {
    start({"body", "actions"});
    show(message("key"));
    service_.reset();
    start({"body", "actions", "inline-reply"});
    show(message("key"));
    EXPECT_EQ(service_->capabilityQuestions, 1);
    EXPECT_EQ(lastCall().replacesId, 0u);
    EXPECT_TRUE(lastCall().actions.contains("inline-reply"));
    service_->reply(lastCall().id, "hello");
    settle();
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].userText, "hello");
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(LinuxUserNotificationCenterTest, WhatAServiceTookToItsGraveIsShownByTheNext) {
    start({"body", "actions"});
    service_->holdsAnswers = true;
    add(message("key"));
    ASSERT_TRUE(waitFor([&] { return service_->held.size() == 1; }));
    service_.reset();
    start({"body", "actions"});
    ASSERT_TRUE(waitFor([&] { return errors_.size() == 1; }));
    EXPECT_EQ(errors_[0], std::nullopt);
    const bool isAtNextService = service_->onScreen.size() == 1 && visible<NotificationBanner>().empty();
    const bool isOnBanner = service_->onScreen.empty() && visible<NotificationBanner>().size() == 1;
    EXPECT_TRUE(isAtNextService || isOnBanner);
}

TEST_F(LinuxUserNotificationCenterTest, WithoutAServiceOurOwnBannersShowEverything) {
    show(message("key"));
    show(plain("file"));
    EXPECT_EQ(errors_, (std::vector<std::optional<std::string>>(2)));
    const auto banners = visible<NotificationBanner>();
    ASSERT_EQ(banners.size(), 2u);
    int fields = 0;
    for (auto* banner : banners) {
        fields += int(banner->findChildren<QLineEdit*>().size());
    }
    EXPECT_EQ(fields, 1);
}

TEST_F(LinuxUserNotificationCenterTest, AServiceThatComesLaterTakesOverFromTheBanner) {
    show(message("key"));
    ASSERT_EQ(visible<NotificationBanner>().size(), 1u);
    start({"body", "actions"});
    show(message("key"));
    EXPECT_EQ(service_->onScreen.size(), 1u);
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(LinuxUserNotificationCenterTest, AServiceThatDoesNotKnowTheCallsIsNone) {
    start({"body", "actions"});
    service_->errorName = "org.freedesktop.DBus.Error.UnknownMethod";
    service_->errorsLeft = 1;
    show(message("key"));
    EXPECT_EQ(errors_.back(), std::nullopt);
    EXPECT_EQ(visible<NotificationBanner>().size(), 1u);
}

TEST_F(LinuxUserNotificationCenterTest, ARefusalIsTheErrorOfTheCompletion) {
    start({"body", "actions"});
    service_->errorName = "org.freedesktop.DBus.Error.InvalidArgs";
    service_->errorsLeft = 1;
    show(message("key"));
    EXPECT_EQ(errors_.back(), "as the test wants it");
    EXPECT_TRUE(visible<NotificationBanner>().empty());
    show(message("key"));
    EXPECT_EQ(errors_.back(), std::nullopt);
}

TEST_F(LinuxUserNotificationCenterTest, AServiceThatHasTooManyIsAskedAgainALittleLater) {
    start({"body", "actions"});
    service_->errorName = "org.freedesktop.Notifications.Error.ExcessNotificationGeneration";
    service_->errorsLeft = 2;
    show(message("key"));
    EXPECT_EQ(errors_.back(), std::nullopt);
    EXPECT_EQ(service_->onScreen.size(), 1u);
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(LinuxUserNotificationCenterTest, WhatIsAskedAgainComesInTheOrderInWhichItCame) {
    start({"body", "actions"});
    service_->errorName = "org.freedesktop.Notifications.Error.ExcessNotificationGeneration";
    service_->errorsLeft = 3;
    QStringList added;
    for (int i = 0; i < 6; ++i) {
        added += "identifier " + QString::number(i);
        auto request = plain(added.back().toStdString());
        request.content.title = added.back().toStdString();
        add(request);
    }
    ASSERT_TRUE(waitFor([&] { return errors_.size() == 6; }));
    QStringList shown;
    for (const auto& call : service_->calls) {
        shown += call.summary;
    }
    // The first three were refused once.
    EXPECT_EQ(shown, added.last(3) + added.first(3));
}

TEST_F(LinuxUserNotificationCenterTest, WhatTheServiceNeverTakesStandsOnOurOwnBanner) {
    start({"body", "actions"});
    service_->errorName = "org.freedesktop.Notifications.Error.ExcessNotificationGeneration";
    service_->errorsLeft = 1000;
    show(message("key"));
    EXPECT_EQ(errors_.back(), std::nullopt);
    EXPECT_EQ(visible<NotificationBanner>().size(), 1u);
}

TEST_F(LinuxUserNotificationCenterTest, ABusThatCarriesNoMoreIsAskedAgainALittleLater) {
    start({"body", "actions"});
    service_->errorName = "org.freedesktop.DBus.Error.LimitsExceeded";
    service_->errorsLeft = 1;
    show(message("key"));
    EXPECT_EQ(errors_.back(), std::nullopt);
    EXPECT_EQ(service_->onScreen.size(), 1u);
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(LinuxUserNotificationCenterTest, AServiceThatWeMayNotUseIsNone) {
    start({"body", "actions"});
    service_->errorName = "org.freedesktop.DBus.Error.AccessDenied";
    service_->errorsLeft = 1;
    show(message("key"));
    EXPECT_EQ(errors_.back(), std::nullopt);
    EXPECT_EQ(visible<NotificationBanner>().size(), 1u);
}

TEST_F(LinuxUserNotificationCenterTest, AFloodIsBoundedAndTheOldestThatWaitGiveWay) {
    start({"body", "actions"});
    service_->holdsAnswers = true;
    constexpr int flood = 2500;
    for (int i = 0; i < flood; ++i) {
        add(numbered(i));
    }
    ASSERT_TRUE(waitFor([&] { return errors_.size() == 500; }));
    for (const auto& error : errors_) {
        EXPECT_TRUE(error.has_value());
    }
    EXPECT_LE(service_->held.size(), 16u);
    service_->holdsAnswers = false;
    service_->answerHeld();
    ASSERT_TRUE(waitFor([&] {
        service_->answerHeld();
        return errors_.size() == flood;
    }));
    EXPECT_EQ(service_->onScreen.size(), 2000u);
    const auto shown = timesShown();
    for (int i = 500; i < flood; ++i) {
        EXPECT_EQ(shown.count(QString::number(i)), 1u) << i;
    }
}

TEST_F(LinuxUserNotificationCenterTest, OnOurOwnBannersAFloodWaitsForRoom) {
    for (int i = 0; i < 60; ++i) {
        add(numbered(i));
    }
    ASSERT_TRUE(waitFor([&] { return errors_.size() == 54; }));
    EXPECT_EQ(visible<NotificationBanner>().size(), 4u);
    ASSERT_TRUE(waitFor([&] {
        for (auto* banner : visible<NotificationBanner>()) {
            banner->setLifetime(std::chrono::milliseconds(1));
        }
        return errors_.size() == 60;
    }));
    EXPECT_EQ(errors_, std::vector<std::optional<std::string>>(60));
}

TEST_F(LinuxUserNotificationCenterTest, AThousandOutliveAServiceThatIsKilledAndComesBack) {
    start({"body", "actions"});
    service_->holdsAnswers = true;
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i) {
        add(numbered(i));
    }
    ASSERT_TRUE(waitFor([&] { return service_->held.size() == 16; }));
    service_.reset();
    ASSERT_TRUE(waitFor([&] { return visible<NotificationBanner>().size() == 4; }));
    start({"body", "actions"});
    ASSERT_TRUE(waitFor([&] { return service_->onScreen.size() == count && errors_.size() == count; }));
    settle();
    const auto shown = timesShown();
    for (int i = 0; i < count; ++i) {
        const auto found = shown.find(QString::number(i));
        EXPECT_TRUE(found != shown.end() && found->second == 1) << i;
    }
    EXPECT_EQ(errors_, std::vector<std::optional<std::string>>(count + 1));
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(LinuxUserNotificationCenterTest, OurBannerGoesToTheServiceThatComesAndMakesNoSecondSound) {
    show(message("key"));
    ASSERT_EQ(visible<NotificationBanner>().size(), 1u);
    start({"body", "actions"});
    ASSERT_TRUE(waitFor([&] { return service_->onScreen.size() == 1; }));
    ASSERT_TRUE(waitFor([] { return visible<NotificationBanner>().empty(); }));
    EXPECT_TRUE(lastCall().hints.value("suppress-sound").toBool());
    EXPECT_FALSE(lastCall().hints.contains("sound-name"));
    service_->close(lastCall().id, dismissed);
    settle();
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, "key");
}

TEST_F(LinuxUserNotificationCenterTest, ABannerInWhichTheUserWritesStays) {
    show(message("key"));
    type(visible<NotificationBanner>().at(0)->findChild<QLineEdit*>(), "Almost");
    start({"body", "actions"});
    show(plain("next"));
    EXPECT_EQ(service_->onScreen.size(), 1u);
    EXPECT_EQ(visible<NotificationBanner>().size(), 1u);
}

TEST_F(LinuxUserNotificationCenterTest, ABannerThatEndsOnItsWayToTheServiceEndsThereToo) {
    show(message("key"));
    start({"body", "actions"});
    service_->holdsAnswers = true;
    ASSERT_TRUE(waitFor([&] { return service_->held.size() == 1; }));
    center_.removeDelivered({"key"});
    ASSERT_TRUE(waitFor([] { return visible<NotificationBanner>().empty(); }));
    service_->answerHeld();
    EXPECT_TRUE(waitFor([&] { return service_->onScreen.empty(); }));
}

TEST_F(LinuxUserNotificationCenterTest, AThreadGroupsWhereTheServiceCan) {
    start({"body", "actions", "x-kde-origin-name"});
    show(message("key"));
    EXPECT_EQ(service_->calls.back().hints.value("x-kde-origin-name").toString(), "Chat");
    show(plain("file"));
    EXPECT_FALSE(service_->calls.back().hints.contains("x-kde-origin-name"));
    service_.reset();
    start({"body", "actions"});
    show(message("key"));
    EXPECT_FALSE(service_->calls.back().hints.contains("x-kde-origin-name"));
}

TEST_F(LinuxUserNotificationCenterTest, OfALongTextNoMoreIsKeptThanCanBeShown) {
    start({"body", "actions"});
    show(plain("first"));
    const auto before = bytesInUse();
    show({"huge", {.title = "Chat", .body = std::string(60'000'000, 'x')}});
    EXPECT_LT(bytesInUse(), before + 5'000'000);
}

TEST_F(LinuxUserNotificationCenterTest, AnyThreadMayAddAndRemove) {
    start({"body", "actions"});
    std::thread other([&] {
        for (int i = 0; i < 50; ++i) {
            center_.add(plain("removed"), nullptr);
            center_.removeDelivered({"removed"});
            center_.removePending({"removed"});
            center_.add(plain("kept " + std::to_string(i)), nullptr);
        }
    });
    ASSERT_TRUE(waitFor([&] { return service_->onScreen.size() >= 50; }));
    other.join();
    settle();
    ASSERT_TRUE(waitFor([&] { return service_->onScreen.size() == 50; }));
}

TEST_F(LinuxUserNotificationCenterTest, LinuxAsksNobodyForPermission) {
    std::optional<AuthorizationStatus> status;
    std::optional<bool> isGranted;
    center_.getAuthorizationStatus([&](auto found) { status = found; });
    center_.requestAuthorization(authorizationOptions::alert, [&](bool granted, const auto& error) {
        isGranted = granted;
        EXPECT_EQ(error, std::nullopt);
    });
    ASSERT_TRUE(waitFor([&] { return status && isGranted; }));
    EXPECT_EQ(*status, AuthorizationStatus::authorized);
    EXPECT_TRUE(*isGranted);
}

TEST_F(LinuxUserNotificationCenterTest, HugeAndBrokenTextsDoNoHarm) {
    start({"body", "body-markup", "actions"});
    show({"huge", {.title = std::string(3'000'000, 'x'), .body = std::string(20'000'000, '<')}});
    EXPECT_EQ(errors_.back(), std::nullopt);
    EXPECT_EQ(lastCall().summary.size(), 500);
    show({"broken", {.title = "a\xc3", .body = std::string("b\0\xff\xfe", 4)}});
    EXPECT_EQ(errors_.back(), std::nullopt);
    EXPECT_EQ(lastCall().summary, "a\uFFFD");
}

TEST_F(LinuxUserNotificationCenterTest, ADestroyedCentreAnswersNothingMore) {
    start({"body", "actions"});
    service_->holdsAnswers = true;
    bool isAnswered = false;
    {
        LinuxUserNotificationCenter other(main_);
        other.add(plain("one"), [&](const auto&) { isAnswered = true; });
        ASSERT_TRUE(waitFor([&] { return service_->held.size() == 1; }));
        other.add(plain("two"), [&](const auto&) { isAnswered = true; });
    }
    service_->holdsAnswers = false;
    service_->answerHeld();
    settle();
    EXPECT_FALSE(isAnswered);
}

} // namespace
} // namespace velloway::test
