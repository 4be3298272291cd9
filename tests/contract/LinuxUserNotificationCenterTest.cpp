#include "hosts/linux/notifications/LinuxUserNotificationCenter.h"

#include "contract/FakeNotificationService.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/notifications/LongIdentifiers.h"
#include "hosts/linux/notifications/NotificationBanner.h"
#include "hosts/linux/notifications/ReplyPanel.h"
#include "hosts/qt/QtMainQueue.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusConnectionInterface>
#include <QKeyEvent>
#include <QLineEdit>

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <thread>

namespace velloway::test {
namespace {

constexpr uint expired = 1;
constexpr uint dismissed = 2;
/// How long the centre waits for a service that says nothing.
constexpr std::chrono::seconds patience{10};

/// Answers as the program does unless told otherwise, and keeps what comes.
class RecordingDelegate : public UserNotificationCenterDelegate {
public:
    void didReceive(const NotificationResponse& response, std::function<void()> completion) override {
        responses.push_back(response);
        completion();
    }
    void willPresent(const NotificationRequest& request,
                     std::function<void(unsigned options)> completion) override {
        asked.push_back(request);
        if (answersAtOnce) {
            completion(options);
        } else {
            held.push_back(std::move(completion));
        }
    }

    unsigned options = presentationOptions::banner | presentationOptions::sound | presentationOptions::badge;
    bool answersAtOnce = true;
    std::vector<NotificationRequest> asked;
    std::vector<NotificationResponse> responses;
    std::vector<std::function<void(unsigned)>> held;
};

/// What the process has asked the allocator for.
std::size_t bytesInUse() {
    const auto statistics = mallinfo2();
    return statistics.uordblks + statistics.hblkhd;
}

template <class Panel> std::vector<Panel*> visible() {
    std::vector<Panel*> found;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* panel = qobject_cast<Panel*>(window); panel && panel->isVisible()) {
            found.push_back(panel);
        }
    }
    return found;
}

void press(QWidget* widget, int key, const QString& text = {}) {
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(widget, &down);
}

void type(QWidget* widget, const QString& text) {
    for (QChar c : text) {
        press(widget, 0, c);
    }
}

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

class LinuxUserNotificationCenterTest : public testing::Test {
protected:
    LinuxUserNotificationCenterTest() {
        center_.setDelegate(&delegate_);
        center_.setCategories({{"REPLY_CATEGORY", {{"REPLY_ACTION", "Reply", "Send", "Type your reply..."}}}});
    }

    void start(QStringList capabilities) {
        service_ = std::make_unique<FakeNotificationService>(std::move(capabilities));
    }
    void add(NotificationRequest request) {
        center_.add(request, [this](const auto& error) { errors_.push_back(error); });
    }
    static NotificationRequest message(const std::string& identifier, const std::string& body = "Hello?") {
        return {identifier,
                {.title = "Chat",
                 .subtitle = "Ada",
                 .body = body,
                 .hasDefaultSound = true,
                 .threadIdentifier = "Chat",
                 .categoryIdentifier = "REPLY_CATEGORY"}};
    }
    static NotificationRequest plain(const std::string& identifier) {
        return {identifier, {.title = "File Received", .body = "a.jpg"}};
    }
    static NotificationRequest numbered(int number) {
        return {"identifier " + std::to_string(number), {.title = std::to_string(number), .body = "Hello?"}};
    }
    /// How often each title has come to the present service.
    std::map<QString, int> timesShown() const {
        std::map<QString, int> times;
        for (const auto& call : service_->calls) {
            ++times[call.summary];
        }
        return times;
    }
    /// Adds and waits until the completion has been called.
    void show(const NotificationRequest& request) {
        const auto before = errors_.size();
        add(request);
        ASSERT_TRUE(waitFor([&] { return errors_.size() > before; }));
    }
    /// Waits until the centre has handled everything that the service has sent so far.
    void settle() {
        show(plain("settle"));
        center_.removeDelivered({"settle"});
    }
    const FakeNotificationService::Notification& lastCall() const { return service_->calls.back(); }

    RecordingDelegate delegate_;
    QtMainQueue main_;
    LinuxUserNotificationCenter center_{main_};
    std::unique_ptr<FakeNotificationService> service_;
    std::vector<std::optional<std::string>> errors_;
};

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

TEST_F(LinuxUserNotificationCenterTest, AnIdentifierOfAnyLengthIsAnsweredReplacedAndRemovedWhole) {
    start({"body", "actions", "inline-reply"});
    for (const std::size_t length : {1u, 256u, 257u, 320u, 100'000u}) {
        const std::string one = std::string(length - 1, 'k') + "1";
        const std::string other = std::string(length - 1, 'k') + "2";
        delegate_.asked.clear();
        delegate_.responses.clear();
        show(message(one));
        const uint id = lastCall().id;
        EXPECT_EQ(delegate_.asked.back().identifier, one);
        show(message(other));
        const uint otherId = lastCall().id;
        EXPECT_NE(otherId, id);
        show(message(one, "again"));
        EXPECT_EQ(lastCall().replacesId, id) << length;
        service_->reply(id, "yes");
        settle();
        ASSERT_EQ(delegate_.responses.size(), 1u);
        EXPECT_EQ(delegate_.responses[0].requestIdentifier, one) << length;
        center_.removeDelivered({other});
        EXPECT_TRUE(waitFor([&] { return !service_->onScreen.contains(otherId); })) << length;
        EXPECT_EQ(std::count(service_->closeCalls.begin(), service_->closeCalls.end(), otherId), 1);
    }
}

TEST_F(LinuxUserNotificationCenterTest, NoIdentifierPassesForTheShortNameOfALongOne) {
    start({"body", "actions"});
    const std::string identifier(1000, 'k');
    show(message(identifier));
    show(message(LongIdentifiers::nameOf(identifier)));
    EXPECT_EQ(lastCall().replacesId, 0u);
}

TEST_F(LinuxUserNotificationCenterTest, ALongIdentifierIsKeptOnceAndNotForEver) {
    start({"body", "actions"});
    show(plain("first"));
    const auto before = bytesInUse();
    for (const char letter : {'a', 'b', 'c'}) {
        const std::string identifier(20'000'000, letter);
        show(plain(identifier));
        delegate_.asked.clear();
        EXPECT_LT(bytesInUse(), before + 45'000'000) << letter;
        center_.removeDelivered({identifier});
        settle();
    }
    EXPECT_LT(bytesInUse(), before + 25'000'000);
}

TEST_F(LinuxUserNotificationCenterTest, AReplyPanelKeepsItsLongIdentifierWhenTheNotificationHasGone) {
    start({"body", "actions"});
    const std::string identifier(1000, 'k');
    show(message(identifier));
    const uint id = lastCall().id;
    service_->invoke(id, "REPLY_ACTION");
    ASSERT_TRUE(waitFor([] { return visible<ReplyPanel>().size() == 1; }));
    service_->close(id, expired);
    settle();
    show(plain(std::string(1000, 'm')));
    ReplyPanel* const panel = visible<ReplyPanel>().front();
    type(panel->findChild<QLineEdit*>(), "yes");
    press(panel->findChild<QLineEdit*>(), Qt::Key_Return);
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, identifier);
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
    time_.pass(patience);
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
    time_.pass(patience);
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
    time_.pass(patience);
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
    time_.pass(patience);
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
    EXPECT_EQ(banners(), 0u);
    EXPECT_TRUE(allWentWell());
}

TEST_F(SlowNotificationServiceTest, ItsSuccessorIsNotTakenForSilent) {
    service_->holdsCapabilities = true;
    addSlowly("one");
    ASSERT_TRUE(isHeld(1));
    time_.pass(patience);
    ASSERT_TRUE(isAnswered(1));
    service_.reset();
    start({"body", "actions"});
    ASSERT_TRUE(waitFor([&] {
        addSlowly("two");
        return isAnswered(errors_.size() + 1) && service_->onScreen.size() == 2;
    }));
    EXPECT_EQ(banners(), 0u);
}

TEST_F(SlowNotificationServiceTest, WhatOurBannerShowsOutlivesTheServiceAndGoesToTheNext) {
    addSlowly("key");
    ASSERT_TRUE(isHeld(1));
    time_.pass(patience);
    ASSERT_TRUE(isAnswered(1));
    service_.reset();
    ASSERT_TRUE(waitFor([] { return banners() == 1; }));
    start({"body", "actions"});
    ASSERT_TRUE(waitFor([&] { return service_->onScreen.size() == 1; }));
    ASSERT_TRUE(waitFor([] { return banners() == 0; }));
    EXPECT_EQ(service_->calls.size(), 1u);
}

TEST_F(SlowNotificationServiceTest, WhatIsRemovedMeanwhileIsShownNowhere) {
    addSlowly("key");
    ASSERT_TRUE(isHeld(1));
    slowly_.removeDelivered({"key"});
    time_.async([this] { time_.pass(patience); });
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
        time_.pass(patience);
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
