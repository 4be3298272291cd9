#include "desktop/TemporaryFolder.h"
#include "desktop/TrayHost.h"
#include "desktop/WaitFor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QProcess>
#include <QProcessEnvironment>

#include <csignal>
#include <memory>
#include <string>
#include <vector>

namespace velloway::test {
namespace {

/// The desktop side in a process of its own.
class Probe {
public:
    Probe(const QProcessEnvironment& environment, const QStringList& arguments, const QString& folder = {}) {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.setProcessEnvironment(environment);
        process_.setWorkingDirectory(folder);
        process_.start(QStringLiteral(DESKTOP_PROBE), arguments);
    }
    ~Probe() {
        ::kill(static_cast<pid_t>(process_.processId()), SIGCONT);
        process_.closeWriteChannel();
        if (!process_.waitForFinished(5000)) {
            process_.kill();
            process_.waitForFinished();
        }
    }

    bool says(const QByteArray& line) {
        return waitFor([&] {
            while (process_.canReadLine()) {
                lines_.push_back(process_.readLine().trimmed().toStdString());
            }
            return std::find(lines_.begin(), lines_.end(), line.toStdString()) != lines_.end();
        });
    }
    bool ends() {
        return waitFor([&] { return process_.state() == QProcess::NotRunning; });
    }
    bool isRunning() const { return process_.state() != QProcess::NotRunning; }
    int answer() const { return process_.exitCode(); }
    void tell(const QByteArray& command) { process_.write(command + '\n'); }
    void stop() { ::kill(static_cast<pid_t>(process_.processId()), SIGSTOP); }
    void crash() { process_.kill(); }

private:
    QProcess process_;
    std::vector<std::string> lines_;
};

bool isWindowShown() {
    QProcess search;
    search.start("xdotool", {"search", "--onlyvisible", "--name", "^Velloway$"});
    search.waitForFinished();
    return search.exitCode() == 0;
}

/// With a session bus and without.
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
    EXPECT_EQ(second->answer(), 0);
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
            EXPECT_EQ(probe->answer(), 0);
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
    EXPECT_NE(second->answer(), 0);
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
    Probe first(environment, {});
    ASSERT_TRUE(first.says("launched"));
    bus.end();
    EXPECT_TRUE(Probe(environment, {"/tmp/file"}).says("handed over"));
    EXPECT_TRUE(first.says("files [/tmp/file]"));
    first.tell("quit");
    EXPECT_TRUE(first.ends());
    EXPECT_EQ(first.answer(), 0);
}

class Trayless : public testing::Test {
protected:
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

TEST_F(Trayless, WithoutATrayAWindowWithTheMenuShowsUpAndGoesWhenATrayComes) {
    Probe probe(environment, {});
    ASSERT_TRUE(probe.says("launched"));
    EXPECT_TRUE(waitFor(isWindowShown));
    TrayHost tray(QStringLiteral(TRAY_HOST));
    ASSERT_TRUE(tray.isReady());
    EXPECT_TRUE(waitFor([&] { return tray.itemCount() == 1; }));
    EXPECT_TRUE(waitFor([] { return !isWindowShown(); }));
}

TEST_F(Trayless, WithATrayNoWindowShowsUpAndItsMenuWorks) {
    TrayHost tray(QStringLiteral(TRAY_HOST));
    ASSERT_TRUE(tray.isReady());
    Probe probe(environment, {});
    ASSERT_TRUE(probe.says("launched"));
    ASSERT_TRUE(waitFor([&] { return tray.itemCount() == 1; }));
    EXPECT_FALSE(waitFor(isWindowShown, std::chrono::milliseconds(2500)));
    tray.ask("click Send Clipboard");
    EXPECT_TRUE(probe.says("chosen Send Clipboard"));
    tray.ask("click Quit Velloway");
    EXPECT_TRUE(probe.ends());
    EXPECT_EQ(probe.answer(), 0);
}

TEST_F(Trayless, KeysOfTheMenuWorkInTheWindowAndClosingItEndsNothing) {
    Probe probe(environment, {});
    ASSERT_TRUE(waitFor(isWindowShown));
    QProcess::execute("xdotool", {"search", "--onlyvisible", "--name", "^Velloway$", "windowfocus", "--sync",
                                  "key", "ctrl+s"});
    EXPECT_TRUE(probe.says("chosen Send SMS…"));
    probe.tell("close");
    EXPECT_TRUE(waitFor([] { return !isWindowShown(); }));
    EXPECT_TRUE(Probe(environment, {}).says("handed over"));
}

TEST_F(Trayless, ASecondStartBringsTheWindowBack) {
    Probe probe(environment, {});
    ASSERT_TRUE(waitFor(isWindowShown));
    probe.tell("close");
    ASSERT_TRUE(waitFor([] { return !isWindowShown(); }));
    EXPECT_TRUE(Probe(environment, {}).says("handed over"));
    EXPECT_TRUE(waitFor(isWindowShown));
    EXPECT_TRUE(probe.says("reopen without windows"));
}

} // namespace
} // namespace velloway::test
