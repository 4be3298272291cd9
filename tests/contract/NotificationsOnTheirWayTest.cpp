#include "contract/LinuxUserNotificationCenterFixture.h"

#include <QAbstractButton>
#include <QMouseEvent>

#include <algorithm>

namespace velloway::test {
namespace {

constexpr auto unknownMethod = "org.freedesktop.DBus.Error.UnknownMethod";
constexpr auto tooMany = "org.freedesktop.Notifications.Error.ExcessNotificationGeneration";

/// On the background, away from what stands on it.
void click(QWidget* widget) {
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const QPointF place(5, 5);
        QMouseEvent event(type, place, widget->mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    }
}

class NotificationsOnTheirWay : public LinuxUserNotificationCenterTest {
protected:
    bool isHeld(std::size_t count) {
        return waitFor([=, this] { return service_->held.size() == count; });
    }
    bool isAnswered(std::size_t count) {
        return waitFor([=, this] { return errors_.size() == count; });
    }
    void reportAllOf(uint id) {
        service_->invoke(id, "default");
        service_->reply(id, "not for us");
        service_->close(id, dismissed);
    }
    bool wasClosed(uint id) const {
        const auto& ids = service_->closeCalls;
        return std::find(ids.begin(), ids.end(), id) != ids.end();
    }
};

TEST_F(NotificationsOnTheirWay, TheServiceGetsTheIconAndChoosesHowLong) {
    start({"body", "actions"});
    show(message("key"));
    EXPECT_EQ(lastCall().icon, "org.velloway.Velloway");
    EXPECT_EQ(lastCall().timeout, -1);
    EXPECT_EQ(lastCall().hints["urgency"].toInt(), 1);
}

TEST_F(NotificationsOnTheirWay, OfALongTextTheBeginningIsShown) {
    start({"body", "actions"});
    show({"huge", {.title = "Chat", .body = "start" + std::string(100'000, 'x')}});
    EXPECT_TRUE(lastCall().body.startsWith("startx"));
    EXPECT_EQ(lastCall().body.size(), 4000);
}

TEST_F(NotificationsOnTheirWay, TheFirstActionOfItsOwnCategoryIsTheReply) {
    start({"body", "actions"});
    center_.setCategories({{"EMPTY", {}},
                           {"OTHER", {{"OTHER_ACTION", "Other", "", ""}}},
                           {"REPLY_CATEGORY", {{"FIRST", "One", "", ""}, {"SECOND", "Two", "", ""}}}});
    show(message("key"));
    EXPECT_EQ(lastCall().actions, (QStringList{"default", "", "FIRST", "One"}));
    for (const auto& category : {std::optional<std::string>("EMPTY"), {"UNKNOWN"}, {std::nullopt}}) {
        auto request = message("key");
        request.content.categoryIdentifier = category;
        show(request);
        EXPECT_EQ(lastCall().actions, (QStringList{"default", ""}));
    }
}

TEST_F(NotificationsOnTheirWay, ASecondDecisionAboutOneRequestChangesNothing) {
    start({"body", "actions"});
    delegate_.answersAtOnce = false;
    add(message("key"));
    ASSERT_TRUE(waitFor([&] { return delegate_.held.size() == 1; }));
    delegate_.held[0](presentationOptions::banner);
    delegate_.held[0](presentationOptions::banner);
    ASSERT_TRUE(isAnswered(1));
    delegate_.answersAtOnce = true;
    settle();
    EXPECT_EQ(service_->calls.size(), 2u);
    EXPECT_EQ(errors_.size(), 2u);
}

TEST_F(NotificationsOnTheirWay, TheCapabilitiesAreAskedOnceForAllThatWait) {
    start({"body", "actions"});
    service_->holdsCapabilities = true;
    for (int i = 0; i < 5; ++i) {
        add(numbered(i));
    }
    ASSERT_TRUE(waitFor([&] { return delegate_.asked.size() == 5 && service_->held.size() == 1; }));
    processPending();
    service_->answerHeld();
    ASSERT_TRUE(isAnswered(5));
    EXPECT_EQ(service_->capabilityQuestions, 1);
    EXPECT_EQ(service_->onScreen.size(), 5u);
}

TEST_F(NotificationsOnTheirWay, WhatTheServiceReportsBeforeItsAnswerCounts) {
    start({"body", "actions", "inline-reply"});
    service_->holdsAnswers = true;
    add(message("clicked"));
    add(message("answered"));
    ASSERT_TRUE(isHeld(2));
    service_->invoke(service_->calls[0].id, "default");
    service_->reply(service_->calls[1].id, "yes");
    service_->answerHeld();
    ASSERT_TRUE(waitFor([&] { return delegate_.responses.size() == 2; }));
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, "clicked");
    EXPECT_EQ(delegate_.responses[0].actionIdentifier, "default");
    EXPECT_EQ(delegate_.responses[1].requestIdentifier, "answered");
    EXPECT_EQ(delegate_.responses[1].userText, "yes");
}

TEST_F(NotificationsOnTheirWay, AnIdThatComesToUsLaterWasNotOursBefore) {
    start({"body", "actions", "inline-reply"});
    show(message("first"));
    const uint next = lastCall().id + 1;
    reportAllOf(next);
    // The bus keeps the order.
    service_->close(lastCall().id, dismissed);
    ASSERT_TRUE(waitFor([&] { return delegate_.responses.size() == 1; }));
    show(message("second"));
    ASSERT_EQ(lastCall().id, next);
    settle();
    EXPECT_EQ(delegate_.responses.size(), 1u);
}

TEST_F(NotificationsOnTheirWay, AnIdThatIsNotGivenToWhatIsOnItsWayIsForgotten) {
    start({"body", "actions", "inline-reply"});
    service_->holdsAnswers = true;
    add(message("first"));
    ASSERT_TRUE(isHeld(1));
    const uint next = lastCall().id + 1;
    reportAllOf(next);
    service_->holdsAnswers = false;
    service_->answerHeld();
    ASSERT_TRUE(isAnswered(1));
    show(message("second"));
    ASSERT_EQ(lastCall().id, next);
    settle();
    EXPECT_TRUE(delegate_.responses.empty());
}

TEST_F(NotificationsOnTheirWay, AReplyTakesTheNotificationFromTheScreen) {
    start({"body", "actions", "inline-reply"});
    show(message("key"));
    const uint id = lastCall().id;
    service_->reply(id, "yes");
    EXPECT_TRUE(waitFor([&] { return wasClosed(id); }));
    show(message("key"));
    EXPECT_EQ(lastCall().replacesId, 0u);
}

TEST_F(NotificationsOnTheirWay, AReplyToWhatHasNoFieldIsNone) {
    start({"body", "actions", "inline-reply"});
    show(plain("file"));
    service_->reply(lastCall().id, "not asked for");
    settle();
    EXPECT_TRUE(delegate_.responses.empty());
}

TEST_F(NotificationsOnTheirWay, WhatTheServiceGivesAnotherIdInPlaceOfTheFirstIsThereOnce) {
    start({"body", "actions"});
    show(message("key"));
    const uint first = lastCall().id;
    // Gone at the service, which the program has not heard yet when it names what to replace.
    service_->onScreen.erase(first);
    show(message("key", "again"));
    EXPECT_EQ(lastCall().replacesId, first);
    EXPECT_NE(lastCall().id, first);
    settle();
    EXPECT_TRUE(wasClosed(first));
    EXPECT_TRUE(service_->onScreen.contains(service_->calls[1].id));
}

TEST_F(NotificationsOnTheirWay, WhatIsRemovedOnItsWayIsNotTriedAgain) {
    start({"body", "actions"});
    show(plain("first"));
    for (const char* error : {unknownMethod, tooMany}) {
        service_->holdsAnswers = true;
        service_->errorName = error;
        service_->errorsLeft = 1;
        const auto before = errors_.size();
        add(message("key"));
        ASSERT_TRUE(isHeld(1));
        center_.removeDelivered({"key"});
        processPending();
        service_->holdsAnswers = false;
        service_->answerHeld();
        ASSERT_TRUE(isAnswered(before + 1));
        EXPECT_EQ(errors_.back(), std::nullopt);
        EXPECT_TRUE(visible<NotificationBanner>().empty());
        settle();
    }
    EXPECT_EQ(timesShown().count("Chat"), 0u);
}

TEST_F(NotificationsOnTheirWay, WhatIsRemovedWhileItsServiceGoesAwayIsNotShownByTheNext) {
    start({"body", "actions"});
    service_->holdsAnswers = true;
    add(message("key"));
    ASSERT_TRUE(isHeld(1));
    center_.removeDelivered({"key"});
    processPending();
    service_.reset();
    start({"body", "actions"});
    ASSERT_TRUE(isAnswered(1));
    EXPECT_EQ(errors_[0], std::nullopt);
    settle();
    EXPECT_EQ(timesShown().count("Chat"), 0u);
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(NotificationsOnTheirWay, OurBannerTakesThePlaceOfWhatTheServiceShowed) {
    start({"body", "actions"});
    show(message("key"));
    const uint id = lastCall().id;
    service_->errorName = unknownMethod;
    service_->errorsLeft = 1;
    show(message("key", "again"));
    EXPECT_EQ(visible<NotificationBanner>().size(), 1u);
    settle();
    EXPECT_TRUE(wasClosed(id));
    // It may have changed since it said that it does not know the call.
    EXPECT_EQ(service_->capabilityQuestions, 2);
}

TEST_F(NotificationsOnTheirWay, ARefusedRequestIsTriedThreeTimes) {
    start({"body", "actions"});
    service_->errorName = tooMany;
    service_->errorsLeft = 1000;
    show(message("key"));
    EXPECT_EQ(service_->errorsLeft, 997);
    EXPECT_EQ(visible<NotificationBanner>().size(), 1u);
}

TEST_F(NotificationsOnTheirWay, OurBannersReportWhatTheUserDoes) {
    const auto first = [] { return visible<NotificationBanner>().at(0); };
    show(message("clicked"));
    click(first());
    show(message("dismissed"));
    first()->findChild<QAbstractButton*>()->click();
    ASSERT_EQ(delegate_.responses.size(), 2u);
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, "clicked");
    EXPECT_EQ(delegate_.responses[0].actionIdentifier, LinuxUserNotificationCenter::defaultAction);
    EXPECT_EQ(delegate_.responses[0].userText, std::nullopt);
    EXPECT_EQ(delegate_.responses[1].requestIdentifier, "dismissed");
    EXPECT_EQ(delegate_.responses[1].actionIdentifier, LinuxUserNotificationCenter::dismissAction);
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(NotificationsOnTheirWay, OurBannerReportsTheReplyOfItsOwnAction) {
    show(message("key"));
    auto* input = visible<NotificationBanner>().at(0)->findChild<QLineEdit*>();
    type(input, "yes");
    press(input, Qt::Key_Return);
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, "key");
    EXPECT_EQ(delegate_.responses[0].actionIdentifier, "REPLY_ACTION");
    EXPECT_EQ(delegate_.responses[0].userText, "yes");
}

TEST_F(NotificationsOnTheirWay, ABannerThatHasGoneDoesNotComeBackWithTheService) {
    show(message("key"));
    visible<NotificationBanner>().at(0)->setLifetime(std::chrono::milliseconds(1));
    ASSERT_TRUE(waitFor([] { return visible<NotificationBanner>().empty(); }));
    show(message("removed"));
    center_.removeDelivered({"removed"});
    ASSERT_TRUE(waitFor([] { return visible<NotificationBanner>().empty(); }));
    start({"body", "actions"});
    settle();
    EXPECT_EQ(service_->calls.size(), 1u);
    EXPECT_TRUE(delegate_.responses.empty());
}

TEST_F(NotificationsOnTheirWay, OfTheBannersThatGoToTheServiceThoseStillUnseenMakeTheirSound) {
    for (int i = 0; i < 6; ++i) {
        auto request = numbered(i);
        request.content.hasDefaultSound = true;
        // In another order than that of their names.
        request.identifier = std::to_string(9 - i);
        show(request);
    }
    ASSERT_EQ(visible<NotificationBanner>().size(), 4u);
    start({"body", "actions"});
    ASSERT_TRUE(waitFor([&] { return service_->calls.size() == 6; }));
    for (int i = 0; i < 6; ++i) {
        const auto& call = service_->calls[std::size_t(i)];
        EXPECT_EQ(call.summary, QString::number(i));
        EXPECT_EQ(call.hints.contains("sound-name"), i >= 4);
    }
    ASSERT_TRUE(waitFor([] { return visible<NotificationBanner>().empty(); }));
}

TEST_F(NotificationsOnTheirWay, ABannerThatIsRemovedMakesRoomForTheNext) {
    for (int i = 0; i < 55; ++i) {
        add(numbered(i));
    }
    ASSERT_TRUE(isAnswered(54));
    center_.removeDelivered({"identifier 1"});
    EXPECT_TRUE(isAnswered(55));
    EXPECT_EQ(errors_.back(), std::nullopt);
}

TEST_F(NotificationsOnTheirWay, AMoveEndsWithItsBanner) {
    show(message("key"));
    start({"body", "actions"});
    service_->holdsCapabilities = true;
    ASSERT_TRUE(isHeld(1));
    visible<NotificationBanner>().at(0)->setLifetime(std::chrono::milliseconds(1));
    ASSERT_TRUE(waitFor([] { return visible<NotificationBanner>().empty(); }));
    service_->holdsCapabilities = false;
    service_->answerHeld();
    settle();
    EXPECT_EQ(service_->calls.size(), 1u);
}

TEST_F(NotificationsOnTheirWay, ABannerThatTheServiceDoesNotTakeStaysAsItIs) {
    show(message("key"));
    auto* const banner = visible<NotificationBanner>().at(0);
    start({"body", "actions"});
    service_->errorName = unknownMethod;
    service_->errorsLeft = 1;
    ASSERT_TRUE(waitFor([&] { return service_->errorsLeft == 0; }));
    settle();
    ASSERT_EQ(visible<NotificationBanner>().size(), 1u);
    EXPECT_EQ(visible<NotificationBanner>().at(0), banner);
}

TEST_F(NotificationsOnTheirWay, ADestroyedCentreSendsNothingThatTheDelegateDecidesAfterwards) {
    start({"body", "actions"});
    delegate_.answersAtOnce = false;
    {
        LinuxUserNotificationCenter other(main_);
        other.setDelegate(&delegate_);
        other.add(plain("one"), nullptr);
        ASSERT_TRUE(waitFor([&] { return delegate_.held.size() == 1; }));
    }
    delegate_.held[0](presentationOptions::banner);
    delegate_.answersAtOnce = true;
    settle();
    EXPECT_EQ(service_->calls.size(), 1u);
}

} // namespace
} // namespace velloway::test
