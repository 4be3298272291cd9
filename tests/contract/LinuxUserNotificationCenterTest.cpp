#include "contract/LinuxUserNotificationCenterFixture.h"

#include <QDBusConnectionInterface>

namespace velloway::test {
namespace {

TEST_F(LinuxUserNotificationCenterTest, TheServiceGetsTextsSoundAndTheNameOfTheProgram) {
    start({"body", "body-markup", "actions"});
    show(message("key", "1 < 2"));
    ASSERT_EQ(service_->calls.size(), 1u);
    EXPECT_EQ(errors_, (std::vector<std::optional<std::string>>{std::nullopt}));
    EXPECT_EQ(lastCall().appName, "Velloway");
    EXPECT_EQ(lastCall().replacesId, 0u);
    EXPECT_EQ(lastCall().summary, "Chat");
    EXPECT_EQ(lastCall().body, "<b>Ada</b>\n1 &lt; 2");
    EXPECT_EQ(lastCall().hints["desktop-entry"], "org.velloway.Velloway");
    EXPECT_EQ(lastCall().hints["category"], "im.received");
    EXPECT_EQ(lastCall().hints["sound-name"], "message-new-instant");
    EXPECT_FALSE(lastCall().hints.contains("suppress-sound"));
}

TEST_F(LinuxUserNotificationCenterTest, ANotificationWithoutSoundIsSilent) {
    start({"body", "actions"});
    show(plain("one"));
    EXPECT_FALSE(lastCall().hints.contains("sound-name"));
    EXPECT_EQ(lastCall().hints["suppress-sound"], true);
    EXPECT_FALSE(lastCall().hints.contains("category"));
}

TEST_F(LinuxUserNotificationCenterTest, TheDelegateIsAskedFirstAndItsOptionsCount) {
    start({"body", "actions"});
    delegate_.options = presentationOptions::banner;
    show(message("no sound"));
    ASSERT_EQ(delegate_.asked.size(), 1u);
    EXPECT_EQ(delegate_.asked[0], message("no sound"));
    EXPECT_EQ(lastCall().hints["suppress-sound"], true);

    delegate_.options = presentationOptions::sound;
    show(message("no banner"));
    EXPECT_EQ(errors_.back(), std::nullopt);
    EXPECT_EQ(service_->calls.size(), 1u);
}

TEST_F(LinuxUserNotificationCenterTest, WithoutADelegateNotificationsAreShown) {
    start({"body", "actions"});
    center_.setDelegate(nullptr);
    show(message("key"));
    service_->close(lastCall().id, dismissed);
    settle();
    EXPECT_EQ(service_->calls[0].hints["sound-name"], "message-new-instant");
    EXPECT_TRUE(delegate_.asked.empty());
    EXPECT_TRUE(delegate_.responses.empty());
}

TEST_F(LinuxUserNotificationCenterTest, APendingRequestThatIsRemovedIsNeverShown) {
    start({"body", "actions"});
    delegate_.answersAtOnce = false;
    add(message("key", "first"));
    add(message("key", "second"));
    center_.removePending({"key"});
    ASSERT_TRUE(waitFor([&] { return errors_.size() == 2; }));
    delegate_.held.at(0)(presentationOptions::banner);
    delegate_.answersAtOnce = true;
    settle();
    EXPECT_EQ(service_->calls.size(), 1u);
}

TEST_F(LinuxUserNotificationCenterTest, ALateDecisionAboutADroppedRequestSaysNothingAboutTheNext) {
    start({"body", "actions"});
    delegate_.answersAtOnce = false;
    add(message("key", "dropped"));
    center_.removePending({"key"});
    add(message("key", "next"));
    ASSERT_TRUE(waitFor([&] { return delegate_.held.size() == 2; }));
    delegate_.held[0](presentationOptions::banner);
    delegate_.held[1](0);
    ASSERT_TRUE(waitFor([&] { return errors_.size() == 2; }));
    delegate_.answersAtOnce = true;
    settle();
    EXPECT_EQ(service_->calls.size(), 1u);
}

TEST_F(LinuxUserNotificationCenterTest, WhereTheServiceTakesTextTheReplyIsTypedIntoTheNotification) {
    start({"body", "actions", "inline-reply"});
    show(message("key"));
    EXPECT_EQ(lastCall().actions, (QStringList{"default", "", "inline-reply", "Reply"}));
    EXPECT_EQ(lastCall().hints["x-kde-reply-placeholder-text"], "Type your reply...");
    EXPECT_EQ(lastCall().hints["x-kde-reply-submit-button-text"], "Send");

    service_->invoke(lastCall().id, "inline-reply");
    service_->reply(lastCall().id, "On my way 👍");
    service_->close(lastCall().id, dismissed);
    settle();
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].actionIdentifier, "REPLY_ACTION");
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, "key");
    EXPECT_EQ(delegate_.responses[0].userText, "On my way 👍");
    EXPECT_TRUE(visible<ReplyPanel>().empty());
}

TEST_F(LinuxUserNotificationCenterTest, AnEmptyReplyIsAReply) {
    start({"body", "actions", "inline-reply"});
    show(message(""));
    service_->reply(lastCall().id, "");
    settle();
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, "");
    EXPECT_EQ(delegate_.responses[0].userText, "");
}

TEST_F(LinuxUserNotificationCenterTest, ElsewhereTheReplyActionOpensOurOwnPanel) {
    start({"body", "actions"});
    show(message("key"));
    EXPECT_EQ(lastCall().actions, (QStringList{"default", "", "REPLY_ACTION", "Reply"}));
    EXPECT_FALSE(lastCall().hints.contains("x-kde-reply-placeholder-text"));

    service_->invoke(lastCall().id, "REPLY_ACTION");
    service_->close(lastCall().id, dismissed);
    ASSERT_TRUE(waitFor([] { return visible<ReplyPanel>().size() == 1; }));
    auto* input = visible<ReplyPanel>()[0]->findChild<QLineEdit*>();
    ASSERT_TRUE(waitFor([&] { return input->hasFocus(); }));
    type(input, "Be there at eight");
    press(input, Qt::Key_Return);
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].actionIdentifier, "REPLY_ACTION");
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, "key");
    EXPECT_EQ(delegate_.responses[0].userText, "Be there at eight");
    EXPECT_TRUE(visible<ReplyPanel>().empty());
    settle();
    EXPECT_EQ(delegate_.responses.size(), 1u);
}

TEST_F(LinuxUserNotificationCenterTest, TheReplyActionTwiceOpensOnePanelAndEscapeSendsNothing) {
    start({"body", "actions"});
    show(message("key"));
    service_->invoke(lastCall().id, "REPLY_ACTION");
    service_->invoke(lastCall().id, "REPLY_ACTION");
    settle();
    ASSERT_EQ(visible<ReplyPanel>().size(), 1u);
    auto* input = visible<ReplyPanel>()[0]->findChild<QLineEdit*>();
    type(input, "never mind");
    press(input, Qt::Key_Escape);
    EXPECT_TRUE(visible<ReplyPanel>().empty());
    EXPECT_TRUE(delegate_.responses.empty());
}

TEST_F(LinuxUserNotificationCenterTest, OnAServiceWithoutActionsWhatCanBeAnsweredStandsOnOurOwnBanner) {
    start({"body"});
    show(message("key"));
    show(plain("file"));
    ASSERT_EQ(service_->calls.size(), 1u);
    EXPECT_EQ(service_->calls[0].summary, "File Received");
    EXPECT_TRUE(service_->calls[0].actions.empty());
    ASSERT_EQ(visible<NotificationBanner>().size(), 1u);
    auto* input = visible<NotificationBanner>()[0]->findChild<QLineEdit*>();
    ASSERT_NE(input, nullptr);
    type(input, "yes");
    press(input, Qt::Key_Return);
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].userText, "yes");
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(LinuxUserNotificationCenterTest, ClickAndDismissalAreReportedOnceAndExpiryIsNot) {
    start({"body", "actions"});
    show(message("clicked"));
    show(message("dismissed"));
    show(message("expired"));
    service_->invoke(service_->calls[0].id, "default");
    service_->close(service_->calls[0].id, dismissed);
    service_->close(service_->calls[1].id, dismissed);
    service_->close(service_->calls[2].id, expired);
    settle();
    ASSERT_EQ(delegate_.responses.size(), 2u);
    EXPECT_EQ(delegate_.responses[0].actionIdentifier, LinuxUserNotificationCenter::defaultAction);
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, "clicked");
    EXPECT_EQ(delegate_.responses[1].actionIdentifier, LinuxUserNotificationCenter::dismissAction);
    EXPECT_EQ(delegate_.responses[1].requestIdentifier, "dismissed");
    EXPECT_EQ(delegate_.responses[1].userText, std::nullopt);
}

TEST_F(LinuxUserNotificationCenterTest, SignalsAboutForeignNotificationsAreNotOurs) {
    start({"body", "actions", "inline-reply"});
    show(message("key"));
    service_->reply(lastCall().id + 500, "not for us");
    service_->close(lastCall().id + 500, dismissed);
    settle();
    EXPECT_TRUE(delegate_.responses.empty());
}

TEST_F(LinuxUserNotificationCenterTest, OnlyTheServiceItselfIsBelieved) {
    start({"body", "actions", "inline-reply"});
    show(message("key"));
    auto signal = QDBusMessage::createSignal("/org/freedesktop/Notifications", "org.freedesktop.Notifications",
                                             "NotificationReplied");
    signal << lastCall().id << QStringLiteral("from somebody else");
    ASSERT_TRUE(QDBusConnection::sessionBus().send(signal));
    // The bus answers in order, so the signal has been passed on by then.
    QDBusConnection::sessionBus().interface()->isServiceRegistered("org.freedesktop.Notifications");
    settle();
    EXPECT_TRUE(delegate_.responses.empty());
}

TEST_F(LinuxUserNotificationCenterTest, ALateAnswerOfTheServiceNeverMakesAReplacementASecondNotification) {
    start({"body", "actions"});
    service_->holdsAnswers = true;
    add(message("key", "first"));
    ASSERT_TRUE(waitFor([&] { return service_->held.size() == 1; }));
    add(message("key", "second"));
    add(message("key", "third"));
    add(plain("other"));
    ASSERT_TRUE(waitFor([&] { return service_->held.size() == 2; }));
    EXPECT_EQ(service_->calls[1].summary, "File Received");
    service_->holdsAnswers = false;
    service_->answerHeld();
    ASSERT_TRUE(waitFor([&] { return errors_.size() == 4; }));
    ASSERT_EQ(service_->calls.size(), 3u);
    EXPECT_EQ(lastCall().replacesId, service_->calls[0].id);
    EXPECT_EQ(lastCall().body, "Ada\nthird");
    EXPECT_EQ(service_->onScreen.size(), 2u);
}

TEST_F(LinuxUserNotificationCenterTest, WhatIsRemovedBeforeTheServiceAnsweredIsClosedWhenItDoes) {
    start({"body", "actions"});
    service_->holdsAnswers = true;
    add(message("key"));
    ASSERT_TRUE(waitFor([&] { return service_->held.size() == 1; }));
    center_.removeDelivered({"key"});
    service_->holdsAnswers = false;
    settle();
    service_->answerHeld();
    ASSERT_TRUE(waitFor([&] { return service_->onScreen.empty(); }));
}

TEST_F(LinuxUserNotificationCenterTest, AClosedNotificationIsNotReplaced) {
    start({"body", "actions"});
    show(message("key"));
    service_->close(lastCall().id, expired);
    settle();
    show(message("key"));
    EXPECT_EQ(lastCall().replacesId, 0u);
}

TEST_F(LinuxUserNotificationCenterTest, ANotificationMayBeClosedBeforeItsIdIsKnown) {
    start({"body", "actions"});
    service_->closesBeforeAnswering = true;
    show(message("key"));
    service_->closesBeforeAnswering = false;
    ASSERT_TRUE(waitFor([&] { return delegate_.responses.size() == 1; }));
    EXPECT_EQ(delegate_.responses[0].actionIdentifier, LinuxUserNotificationCenter::dismissAction);
    show(message("key"));
    EXPECT_EQ(lastCall().replacesId, 0u);
}

} // namespace
} // namespace velloway::test
