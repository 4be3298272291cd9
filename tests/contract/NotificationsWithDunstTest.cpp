#include "desktop/WaitFor.h"
#include "hosts/linux/notifications/LinuxUserNotificationCenter.h"
#include "hosts/linux/notifications/NotificationBanner.h"
#include "hosts/linux/notifications/ReplyPanel.h"
#include "hosts/qt/QtMainQueue.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <vector>

namespace velloway::test {
namespace {

const QString serviceName = QStringLiteral("org.freedesktop.Notifications");
const QString servicePath = QStringLiteral("/org/freedesktop/Notifications");
const QString controlInterface = QStringLiteral("org.dunstproject.cmd0");

class RecordingDelegate : public UserNotificationCenterDelegate {
public:
    void didReceive(const NotificationResponse& response, std::function<void()> completion) override {
        responses.push_back(response);
        completion();
    }
    void willPresent(const NotificationRequest&, std::function<void(unsigned options)> completion) override {
        completion(presentationOptions::banner);
    }

    std::vector<NotificationResponse> responses;
};

/// A notification service that others wrote, as users run it.
class Dunst {
public:
    Dunst() {
        write("dunstrc", "[global]\n    dmenu = " + place_.filePath("choose") +
                             "\n    notification_limit = 3\n    idle_threshold = 0\n"
                             "[urgency_normal]\n    timeout = 0\n");
        // Stands in for the user who picks the reply from the menu of the actions.
        write("choose", "#!/bin/sh\ngrep -m 1 Reply\n");
        QFile::setPermissions(place_.filePath("choose"),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    ~Dunst() { stop(); }

    bool start() {
        process_.start("dunst", {"-conf", place_.filePath("dunstrc")});
        return process_.waitForStarted() && waitFor([] { return isOnBus(); });
    }
    bool stop() {
        process_.kill();
        return process_.waitForFinished() && waitFor([] { return !isOnBus(); });
    }

    /// How many it holds for the user, drawn or waiting for their turn.
    static int shown() { return number("displayedLength") + number("waitingLength"); }
    static void control(const QString& method, const QVariantList& arguments = {}) {
        auto call = QDBusMessage::createMethodCall(serviceName, servicePath, controlInterface, method);
        call.setArguments(arguments);
        QDBusConnection::sessionBus().call(call);
    }

private:
    static int number(const QString& property) {
        auto question =
            QDBusMessage::createMethodCall(serviceName, servicePath, "org.freedesktop.DBus.Properties", "Get");
        question << controlInterface << property;
        const auto answer = QDBusConnection::sessionBus().call(question);
        return answer.arguments().isEmpty()
                   ? -1
                   : answer.arguments().constFirst().value<QDBusVariant>().variant().toInt();
    }
    static bool isOnBus() {
        return QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName);
    }

    void write(const QString& name, const QString& text) {
        QFile file(place_.filePath(name));
        file.open(QFile::WriteOnly);
        file.write(text.toUtf8());
    }

    QTemporaryDir place_;
    QProcess process_;
};

template <class Panel> std::vector<Panel*> visible() {
    std::vector<Panel*> found;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* panel = qobject_cast<Panel*>(window); panel && panel->isVisible()) {
            found.push_back(panel);
        }
    }
    return found;
}

class NotificationsWithDunst : public testing::Test {
protected:
    void SetUp() override {
        center_.setDelegate(&delegate_);
        center_.setCategories({{"REPLY_CATEGORY", {{"REPLY_ACTION", "Reply", "Send", "Type your reply..."}}}});
        ASSERT_TRUE(dunst_.start()) << "the package dunst must be installed";
    }

    void show(const std::string& identifier, const std::string& body) {
        std::optional<std::optional<std::string>> answer;
        center_.add(
            {identifier,
             {.title = "Chat", .subtitle = "Ada & <b>", .body = body, .categoryIdentifier = "REPLY_CATEGORY"}},
            [&](const auto& error) { answer = error; });
        ASSERT_TRUE(waitFor([&] { return answer.has_value(); }));
        ASSERT_EQ(*answer, std::nullopt);
    }
    static bool showsSoon(int count) {
        return waitFor([=] { return Dunst::shown() == count; });
    }

    RecordingDelegate delegate_;
    QtMainQueue main_;
    LinuxUserNotificationCenter center_{main_};
    Dunst dunst_;
};

TEST_F(NotificationsWithDunst, NotificationsAreShownReplacedInPlaceAndRemoved) {
    show("one", "first 👍");
    show("two", "second");
    EXPECT_TRUE(showsSoon(2));
    show("one", "first, again");
    EXPECT_TRUE(showsSoon(2));
    center_.removeDelivered({"one"});
    EXPECT_TRUE(showsSoon(1));
    center_.removeDelivered({"two"});
    EXPECT_TRUE(showsSoon(0));
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(NotificationsWithDunst, TheReplyActionOpensOurPanelAndReturnSendsTheReply) {
    show("key", "Are we still on?");
    Dunst::control("ContextMenuCall");
    ASSERT_TRUE(waitFor([] { return visible<ReplyPanel>().size() == 1; }));
    auto* input = visible<ReplyPanel>()[0]->findChild<QLineEdit*>();
    ASSERT_TRUE(waitFor([&] { return input->hasFocus(); }));
    input->setText("Yes");
    emit input->returnPressed();
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].actionIdentifier, "REPLY_ACTION");
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, "key");
    EXPECT_EQ(delegate_.responses[0].userText, "Yes");
    EXPECT_TRUE(showsSoon(0));
}

TEST_F(NotificationsWithDunst, AClickAndADismissalAreReported) {
    show("clicked", "one");
    ASSERT_TRUE(showsSoon(1));
    Dunst::control("NotificationAction", {QVariant::fromValue<uint>(0)});
    ASSERT_TRUE(waitFor([&] { return delegate_.responses.size() == 1; }));
    EXPECT_EQ(delegate_.responses[0].actionIdentifier, LinuxUserNotificationCenter::defaultAction);
    center_.removeDelivered({"clicked"});
    ASSERT_TRUE(showsSoon(0));
    show("dismissed", "two");
    ASSERT_TRUE(showsSoon(1));
    Dunst::control("NotificationCloseLast");
    ASSERT_TRUE(waitFor([&] { return delegate_.responses.size() == 2; }));
    EXPECT_EQ(delegate_.responses[1].actionIdentifier, LinuxUserNotificationCenter::dismissAction);
    EXPECT_EQ(delegate_.responses[1].requestIdentifier, "dismissed");
}

TEST_F(NotificationsWithDunst, AServiceThatIsKilledAndStartedAgainShowsWhatComesNext) {
    show("key", "before");
    ASSERT_TRUE(showsSoon(1));
    ASSERT_TRUE(dunst_.stop());
    show("key", "between");
    EXPECT_EQ(visible<NotificationBanner>().size(), 1u);
    ASSERT_TRUE(dunst_.start());
    show("key", "after");
    EXPECT_TRUE(showsSoon(1));
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

TEST_F(NotificationsWithDunst, AServiceThatTheBusCanStartIsStarted) {
    ASSERT_TRUE(dunst_.stop());
    const QString folder = qEnvironmentVariable("XDG_DATA_HOME") + "/dbus-1/services/";
    QFile file(folder + serviceName + ".service");
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write("[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=/usr/bin/dunst\n");
    file.close();
    QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig"));
    show("key", "wakes it up");
    EXPECT_EQ(Dunst::shown(), 1);
    EXPECT_TRUE(visible<NotificationBanner>().empty());

    file.remove();
    const qint64 started = QDBusConnection::sessionBus().interface()->servicePid(serviceName);
    ASSERT_GT(started, 1);
    ::kill(pid_t(started), SIGKILL);
    EXPECT_TRUE(
        waitFor([] { return !QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName); }));
}

TEST_F(NotificationsWithDunst, ABurstIsShownWhole) {
    constexpr int burst = 200;
    int answers = 0;
    for (int i = 0; i < burst; ++i) {
        center_.add(
            {"identifier " + std::to_string(i), {.title = "Title " + std::to_string(i), .body = "body"}},
            [&](const auto& error) {
                EXPECT_EQ(error, std::nullopt);
                ++answers;
            });
    }
    // The service asks the X server many things for each, so that a busy machine may make it slow; it is waited
    // for as long as it gets on.
    while (answers < burst) {
        ASSERT_TRUE(waitFor([&, before = answers] { return answers > before; })) << "after " << answers;
    }
    EXPECT_TRUE(showsSoon(burst));
    EXPECT_TRUE(visible<NotificationBanner>().empty());
}

} // namespace
} // namespace velloway::test
