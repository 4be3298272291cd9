#include "hosts/linux/notifications/NotificationService.h"
#include "contract/FakeNotificationService.h"
#include "desktop/WaitFor.h"
#include "fakes/FakeDispatchQueue.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace velloway::test {
namespace {

using Outcome = NotificationService::Outcome;

/// The adapter on the bus alone, with a clock that does not run.
class NotificationServiceTest : public testing::Test {
protected:
    void start() { desktop_ = std::make_unique<FakeNotificationService>(); }
    void note(const QString& event) { events_ << event; }

    /// Null when there is no answer in time.
    std::optional<QString> capabilities() {
        std::optional<QString> answer;
        service_.askCapabilities(
            [&](const QStringList* names) { answer = names ? names->join(' ') : QString("none"); });
        waitFor([&] { return answer.has_value(); });
        return answer;
    }
    std::optional<NotificationService::Answer> notify(const NotificationService::Notification& what = {}) {
        std::optional<NotificationService::Answer> found;
        service_.notify(
            what, [&](const auto& answer) { found = answer; }, [] {});
        waitFor([&] { return found.has_value(); });
        return found;
    }

    QStringList events_;
    FakeDispatchQueue main_;
    std::unique_ptr<FakeNotificationService> desktop_;
    NotificationService service_{
        main_,
        {.closed = [this](uint id, uint reason) { note(QString("closed %1 %2").arg(id).arg(reason)); },
         .actionInvoked = [this](uint id, const QString& key) { note(QString("action %1 ").arg(id) + key); },
         .replied = [this](uint id, const QString& text) { note(QString("reply %1 ").arg(id) + text); },
         .ownerChanged = [this] { note("owner changed"); },
         .becameAvailable = [this] { note("available"); }}};
};

TEST_F(NotificationServiceTest, HandsOverEveryArgumentOfTheCall) {
    start();
    EXPECT_EQ(capabilities(), "body actions");
    const auto answer = notify({.replacesId = 9,
                                .summary = "summary",
                                .body = "body",
                                .actions = {"key", "title"},
                                .hints = {{"urgency", 1}}});
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->outcome, Outcome::shown);
    EXPECT_EQ(answer->errorText, "");
    const auto& call = desktop_->calls.at(0);
    EXPECT_EQ(answer->id, call.id);
    EXPECT_EQ(call.appName, "Velloway");
    EXPECT_EQ(call.replacesId, 9u);
    EXPECT_EQ(call.icon, "org.velloway.Velloway");
    EXPECT_EQ(call.summary, "summary");
    EXPECT_EQ(call.body, "body");
    EXPECT_EQ(call.actions, (QStringList{"key", "title"}));
    EXPECT_EQ(call.hints, (QVariantMap{{"urgency", 1}}));
    EXPECT_EQ(call.timeout, -1);
    service_.close(answer->id);
    ASSERT_TRUE(waitFor([&] { return events_.size() == 1; }));
    EXPECT_EQ(desktop_->closeCalls, (std::vector<uint>{answer->id}));
    EXPECT_EQ(events_, (QStringList{QString("closed %1 3").arg(answer->id)}));
}

TEST_F(NotificationServiceTest, EveryErrorHasItsOutcomeAndItsText) {
    struct Case {
        const char* name;
        Outcome outcome;
    };
    const Case cases[] = {
        {"org.freedesktop.Notifications.Error.ExcessNotificationGeneration", Outcome::tooMany},
        {"org.freedesktop.Notifications.MaxNotificationsExceeded", Outcome::tooMany},
        {"org.freedesktop.DBus.Error.LimitsExceeded", Outcome::tooMany},
        {"org.freedesktop.DBus.Error.NoMemory", Outcome::tooMany},
        {"org.freedesktop.DBus.Error.Spawn.ExecFailed", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.Spawn.ChildExited", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.AccessDenied", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.ServiceUnknown", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.NoReply", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.Timeout", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.TimedOut", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.Disconnected", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.NoServer", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.UnknownMethod", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.UnknownInterface", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.UnknownObject", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.NameHasNoOwner", Outcome::unavailable},
        {"org.freedesktop.DBus.Error.InvalidArgs", Outcome::refused},
        {"org.freedesktop.DBus.Error.Failed", Outcome::refused},
        {"com.example.Spawn.Odd", Outcome::refused},
    };
    start();
    ASSERT_TRUE(capabilities());
    for (const Case& each : cases) {
        desktop_->errorName = each.name;
        desktop_->errorsLeft = 1;
        const auto answer = notify();
        ASSERT_TRUE(answer) << each.name;
        EXPECT_EQ(answer->outcome, each.outcome) << each.name;
        EXPECT_EQ(answer->id, 0u);
        EXPECT_EQ(answer->errorText, "as the test wants it") << each.name;
    }
}

TEST_F(NotificationServiceTest, AnAnswerWithoutAnIdIsARefusal) {
    start();
    ASSERT_TRUE(capabilities());
    desktop_->givesNoId = true;
    const auto answer = notify();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->outcome, Outcome::refused);
    EXPECT_EQ(answer->errorText, "The notification service gave no identifier.");
}

TEST_F(NotificationServiceTest, SignalsArriveWithTheirArgumentsAndIncompleteOnesDoNot) {
    start();
    ASSERT_TRUE(capabilities());
    const char* const names[] = {"NotificationClosed", "ActionInvoked", "NotificationReplied"};
    for (const char* name : names) {
        desktop_->send(name, {7u});
        desktop_->send(name, {});
    }
    desktop_->send("NotificationClosed", {7u, 2u});
    desktop_->send("ActionInvoked", {8u, "key"});
    desktop_->send("NotificationReplied", {9u, "text"});
    ASSERT_TRUE(waitFor([&] { return events_.size() >= 3; }));
    EXPECT_EQ(events_, (QStringList{"closed 7 2", "action 8 key", "reply 9 text"}));
}

TEST_F(NotificationServiceTest, WithoutAServiceThereAreNoCapabilitiesUntilOneComes) {
    EXPECT_EQ(capabilities(), "none");
    start();
    ASSERT_TRUE(waitFor([&] { return events_.size() == 2; }));
    EXPECT_EQ(events_, (QStringList{"owner changed", "available"}));
    EXPECT_EQ(capabilities(), "body actions");
    desktop_.reset();
    ASSERT_TRUE(waitFor([&] { return events_.size() == 3; }));
    EXPECT_EQ(events_.back(), "owner changed");
    EXPECT_EQ(capabilities(), "none");
}

TEST_F(NotificationServiceTest, BeforeTheBusIsThereNothingIsSent) {
    start();
    const auto answer = notify();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->outcome, Outcome::ownerGone);
    EXPECT_TRUE(desktop_->calls.empty());
    EXPECT_EQ(events_, (QStringList{"owner changed"}));
}

TEST_F(NotificationServiceTest, AServiceThatGoesAwayWhileItIsAskedIsAskedTwiceMoreWhenTheNextHasCome) {
    start();
    desktop_->holdsCapabilities = true;
    std::optional<bool> hasNames;
    service_.askCapabilities([&](const QStringList* names) { hasNames = names != nullptr; });
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(waitFor([&] { return desktop_->held.size() == 1; })) << round;
        EXPECT_FALSE(hasNames);
        // The next has the name before the bus reports that the first has none.
        auto before = std::move(desktop_);
        before.reset();
        start();
        desktop_->holdsCapabilities = true;
    }
    ASSERT_TRUE(waitFor([&] { return hasNames.has_value(); }));
    EXPECT_FALSE(*hasNames);
    EXPECT_TRUE(desktop_->held.empty());
}

TEST_F(NotificationServiceTest, AnAnswerOfTheServiceThatHasGoneIsNotThatOfItsSuccessor) {
    start();
    ASSERT_TRUE(capabilities());
    desktop_->holdsAnswers = true;
    std::optional<NotificationService::Answer> found;
    service_.notify(
        {}, [&](const auto& answer) { found = answer; }, [] {});
    ASSERT_TRUE(waitFor([&] { return desktop_->held.size() == 1; }));
    desktop_.reset();
    start();
    ASSERT_TRUE(waitFor([&] { return found && events_.size() == 3; }));
    EXPECT_EQ(found->outcome, Outcome::ownerGone);
    EXPECT_EQ(events_, (QStringList{"owner changed", "owner changed", "available"}));
}

TEST_F(NotificationServiceTest, ACallIsOverdueAfterTenSecondsAndStillAnsweredWhenTheAnswerComes) {
    start();
    ASSERT_TRUE(capabilities());
    desktop_->holdsAnswers = true;
    QStringList order;
    service_.notify(
        {}, [&](const auto& answer) { order << QString("answered %1").arg(answer.id); },
        [&] { order << "overdue"; });
    ASSERT_TRUE(waitFor([&] { return desktop_->held.size() == 1; }));
    main_.advance(std::chrono::milliseconds(9999));
    EXPECT_TRUE(order.isEmpty());
    main_.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(order, (QStringList{"overdue"}));
    main_.advance(std::chrono::hours(1));
    desktop_->answerHeld();
    ASSERT_TRUE(waitFor([&] { return order.size() == 2; }));
    EXPECT_EQ(order.back(), QString("answered %1").arg(desktop_->calls.at(0).id));
}

TEST_F(NotificationServiceTest, AnAnswerToACallBeforeIsASignOfLifeAndOneToACallAfterIsNot) {
    start();
    ASSERT_TRUE(capabilities());
    desktop_->holdsAnswers = true;
    QStringList order;
    for (const char* name : {"first", "second", "third"}) {
        service_.notify(
            {}, [&order, name](const auto&) { order << QString(name) + " answered"; },
            [&order, name] { order << QString(name) + " overdue"; });
    }
    ASSERT_TRUE(waitFor([&] { return desktop_->held.size() == 3; }));
    main_.advance(std::chrono::seconds(6));
    std::swap(desktop_->held[0], desktop_->held[1]);
    desktop_->answerHeld(1);
    ASSERT_TRUE(waitFor([&] { return order.size() == 1; }));
    main_.advance(std::chrono::seconds(4));
    EXPECT_EQ(order, (QStringList{"second answered", "first overdue"}));
    main_.advance(std::chrono::milliseconds(9999));
    EXPECT_EQ(order.size(), 2);
    main_.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(order.back(), "third overdue");
}

TEST_F(NotificationServiceTest, OneThatIsSilentIsNotAskedAgainUntilItStirs) {
    start();
    desktop_->holdsCapabilities = true;
    QStringList answers;
    const auto ask = [&] {
        service_.askCapabilities([&](const QStringList* names) { answers << (names ? "names" : "none"); });
    };
    ask();
    ASSERT_TRUE(waitFor([&] { return desktop_->held.size() == 1; }));
    main_.advance(std::chrono::seconds(10));
    EXPECT_EQ(answers, (QStringList{"none"}));
    ask();
    EXPECT_EQ(answers, (QStringList{"none", "none"}));
    EXPECT_EQ(desktop_->capabilityQuestions, 1);
    desktop_->holdsCapabilities = false;
    desktop_->answerHeld();
    ASSERT_TRUE(waitFor([&] { return events_.size() == 1; }));
    EXPECT_EQ(events_, (QStringList{"available"}));
    EXPECT_EQ(answers.size(), 2);
    ask();
    ASSERT_TRUE(waitFor([&] { return answers.size() == 3; }));
    EXPECT_EQ(answers.back(), "names");
}

} // namespace
} // namespace velloway::test
