#include "hosts/linux/desktop/SingleInstance.h"
#include "Probe.h"
#include "desktop/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>

#include <memory>
#include <string>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using Outcome = SingleInstance::Outcome;

const QString name = QStringLiteral("org.velloway.Velloway");
const QString path = QStringLiteral("/org/velloway/Velloway");

/// Two starts in processes of their own, with a session bus and without.
class OneInstance : public testing::TestWithParam<bool> {
protected:
    OneInstance() {
        if (!GetParam()) {
            environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        }
    }

    std::unique_ptr<Probe> start(const QStringList& arguments = {}, const QString& workingDirectory = {}) {
        return std::make_unique<Probe>(environment, arguments, workingDirectory);
    }

    TemporaryFolder folder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

TEST_P(OneInstance, ASecondStartBringsTheFirstOneForwardAndEndsWell) {
    const auto first = start();
    ASSERT_TRUE(first->says("launched"));
    const auto second = start();
    EXPECT_TRUE(second->says("handed over"));
    EXPECT_TRUE(second->ends());
    EXPECT_EQ(second->exitCode(), 0);
    EXPECT_TRUE(first->says("reopen without windows"));
}

TEST_P(OneInstance, FilesGivenToASecondStartReachTheFirstOneAsWholePaths) {
    const auto first = start();
    ASSERT_TRUE(first->says("launched"));
    const QString place = QString::fromStdString(folder.path().string());
    const auto second =
        start({"some file.txt", "../up", "/abs/ä;$(x)%20", "file:///tmp/a%20b", "--option"}, place);
    EXPECT_TRUE(second->says("handed over"));
    const std::string parent = folder.path().parent_path().string();
    const std::string expected =
        "files [" + folder.path().string() + "/some file.txt] [" + parent + "/up] [/abs/ä;$(x)%20] [/tmp/a b]";
    EXPECT_TRUE(first->says(QByteArray::fromStdString(expected)));
}

TEST_P(OneInstance, FilesGivenToTheFirstStartReachItAfterItsLaunch) {
    const auto first = start({"/tmp/one", "/tmp/two"});
    EXPECT_TRUE(first->says("launched"));
    EXPECT_TRUE(first->says("files [/tmp/one] [/tmp/two]"));
}

TEST_P(OneInstance, ASecondStartForNobodyAsksNothingOfTheFirst) {
    const auto first = start();
    ASSERT_TRUE(first->says("launched"));
    environment.insert("DESKTOP_AUTOSTART_ID", "10a");
    const auto second = start();
    EXPECT_TRUE(second->says("handed over"));
    EXPECT_TRUE(start({"/tmp/file"})->says("handed over"));
    // Whatever the first of the two had asked for would have come before this.
    EXPECT_TRUE(first->says("files [/tmp/file]"));
    EXPECT_FALSE(first->hasSaid("reopen without windows"));
}

TEST_P(OneInstance, ManyStartsAtOnceLeaveOne) {
    std::vector<std::unique_ptr<Probe>> probes;
    for (int number = 0; number < 5; ++number) {
        probes.push_back(start());
    }
    const auto isSettled = [&] {
        return std::count_if(probes.begin(), probes.end(),
                             [](const auto& probe) { return probe->isRunning(); }) <= 1;
    };
    EXPECT_TRUE(waitFor(isSettled));
    int launched = 0;
    for (const auto& probe : probes) {
        if (probe->isRunning()) {
            EXPECT_TRUE(probe->says("launched"));
            ++launched;
        } else {
            EXPECT_EQ(probe->exitCode(), 0);
        }
    }
    EXPECT_EQ(launched, 1);
}

TEST_P(OneInstance, OneThatCrashedIsNotInTheWay) {
    const auto first = start();
    ASSERT_TRUE(first->says("launched"));
    first->crash();
    ASSERT_TRUE(first->ends());
    const auto second = start();
    EXPECT_TRUE(second->says("launched"));
    const auto third = start();
    EXPECT_TRUE(third->says("handed over"));
}

TEST_P(OneInstance, OneThatHangsMakesTheSecondStartFailAfterABoundedTime) {
    const auto first = start();
    ASSERT_TRUE(first->says("launched"));
    first->stop();
    const auto second = start();
    EXPECT_TRUE(second->says("not answered"));
    EXPECT_TRUE(second->ends());
    EXPECT_NE(second->exitCode(), 0);
}

INSTANTIATE_TEST_SUITE_P(, OneInstance, testing::Bool(),
                         [](const auto& it) { return std::string(it.param ? "WithBus" : "WithoutBus"); });

/// A session bus that the test can end.
class MortalBus {
public:
    MortalBus() {
        daemon_.start("dbus-daemon", {"--session", "--nofork", "--nopidfile", "--print-address"});
        if (waitFor([this] { return daemon_.canReadLine(); })) {
            address_ = QString::fromUtf8(daemon_.readLine().trimmed());
        }
    }
    ~MortalBus() { end(); }

    QString address() const { return address_; }
    void end() {
        daemon_.kill();
        daemon_.waitForFinished();
    }

private:
    QProcess daemon_;
    QString address_;
};

TEST(DyingBus, EndsNeitherTheProgramNorItsBeingTheOnlyOne) {
    MortalBus bus;
    ASSERT_FALSE(bus.address().isEmpty());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
    Probe first(environment);
    ASSERT_TRUE(first.says("launched"));
    bus.end();
    EXPECT_TRUE(Probe(environment, {"/tmp/file"}).says("handed over"));
    EXPECT_TRUE(first.says("files [/tmp/file]"));
    first.command("quit");
    EXPECT_TRUE(first.ends());
    EXPECT_EQ(first.exitCode(), 0);
}

/// This process is the first start.
class Requests : public testing::Test {
protected:
    Requests() { EXPECT_EQ(instance.claim({}), Outcome::first); }
    ~Requests() override {
        QDBusConnection::sessionBus().unregisterObject(path);
        QDBusConnection::sessionBus().interface()->unregisterService(name);
    }

    /// As another program on the bus does; the event loop answers.
    QDBusMessage call(const QString& method, const QVariantList& arguments) {
        QDBusConnection other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "other");
        QDBusMessage message =
            QDBusMessage::createMethodCall(name, path, "org.freedesktop.Application", method);
        message.setArguments(arguments);
        QDBusPendingCall pending = other.asyncCall(message);
        EXPECT_TRUE(waitFor([&] { return pending.isFinished(); }));
        QDBusConnection::disconnectFromBus("other");
        return pending.reply();
    }
    void listen() {
        instance.setHandler([this](const SingleInstance::Request& request) { taken.push_back(request); });
    }
    bool hasTaken(std::size_t count) {
        return waitFor([&] { return taken.size() >= count; });
    }

    const QVariantMap bothTokens{{"activation-token", "wayland token"}, {"desktop-startup-id", "x11 token"}};
    SingleInstance instance;
    std::vector<SingleInstance::Request> taken;
};

TEST_F(Requests, ComeOverTheBusWithTheirTokens) {
    listen();
    const ActivationToken token{.wayland = "wayland token", .x11 = "x11 token"};
    EXPECT_EQ(call("Activate", {bothTokens}).type(), QDBusMessage::ReplyMessage);
    call("Open", {QStringList{"tel:5551", "file:///tmp/a"}, bothTokens});
    call("ActivateAction", {"sms", QVariantList(), bothTokens});
    ASSERT_TRUE(hasTaken(3));
    EXPECT_TRUE(taken[0].isReopen());
    EXPECT_THAT(taken[1].uris, ElementsAre("tel:5551", "file:///tmp/a"));
    EXPECT_FALSE(taken[1].isReopen());
    EXPECT_EQ(taken[2].action, "sms");
    EXPECT_FALSE(taken[2].isReopen());
    for (const SingleInstance::Request& request : taken) {
        EXPECT_EQ(request.token, token);
    }
}

TEST_F(Requests, ThatComeBeforeThereIsAHandlerWaitForIt) {
    call("ActivateAction", {"call", QVariantList(), QVariantMap()});
    call("Open", {QStringList{"sms:5551"}, QVariantMap()});
    processPending();
    listen();
    EXPECT_TRUE(taken.empty()) << "only from the event loop";
    ASSERT_TRUE(hasTaken(2));
    EXPECT_EQ(taken[0].action, "call");
    EXPECT_THAT(taken[1].uris, ElementsAre("sms:5551"));
    processPending();
    EXPECT_EQ(taken.size(), 2U) << "each comes once";
}

TEST_F(Requests, OfAnotherStartBringTheTokensOfThatStart) {
    listen();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_ACTIVATION_TOKEN", "wayland token");
    EXPECT_TRUE(Probe(environment).says("handed over"));
    ASSERT_TRUE(hasTaken(1));
    EXPECT_TRUE(taken[0].isReopen());
    EXPECT_EQ(taken[0].token, (ActivationToken{.wayland = "wayland token"}));
    environment.remove("XDG_ACTIVATION_TOKEN");
    environment.insert("DESKTOP_STARTUP_ID", "x11 token");
    EXPECT_TRUE(Probe(environment, {"tel:5551"}).says("handed over"));
    ASSERT_TRUE(hasTaken(2));
    EXPECT_THAT(taken[1].uris, ElementsAre("tel:5551"));
    EXPECT_EQ(taken[1].token, (ActivationToken{.x11 = "x11 token"}));
}

TEST_F(Requests, ThatTheFirstStartRefusesAreNotHandedOver) {
    QDBusConnection::sessionBus().unregisterObject(path);
    EXPECT_TRUE(Probe(QProcessEnvironment::systemEnvironment()).says("not answered"));
}

TEST(RequestOfACommandLine, NamesFilesByAddressesAndKeepsThoseOfAPhone) {
    const auto addresses = [](const std::vector<std::string>& arguments) {
        return SingleInstance::requestFrom(arguments, "/home/user").uris;
    };
    EXPECT_THAT(addresses({"a b", "./c/../d", "/e"}),
                ElementsAre("file:///home/user/a%20b", "file:///home/user/d", "file:///e"));
    EXPECT_THAT(
        addresses({"tel:1", "SMS:2", "smsto:3", "telephone", "sms"}),
        ElementsAre("tel:1", "SMS:2", "smsto:3", "file:///home/user/telephone", "file:///home/user/sms"));
    EXPECT_THAT(addresses({"file:///tmp/a%20b", "", "-", "--help", "-x", "last"}),
                ElementsAre("file:///tmp/a%20b", "file:///home/user/last"));
    EXPECT_TRUE(SingleInstance::requestFrom({"--help"}, "/").isReopen());
}

/// A place where there can be no lock.
TEST(SessionWithoutARuntimeFolder, StillStarts) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    environment.insert("XDG_RUNTIME_DIR", "/proc/nowhere");
    environment.insert("TMPDIR", "/proc/nowhere");
    EXPECT_TRUE(Probe(environment).says("launched"));
}

} // namespace
} // namespace velloway::test
