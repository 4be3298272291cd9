#include "hosts/linux/desktop/LinuxScripts.h"

#include "Programs.h"
#include "desktop/WaitFor.h"
#include "fakes/FakeLog.h"
#include "remote/SystemScripts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThreadPool>

#include <cstdlib>
#include <memory>
#include <string>

namespace velloway::test {

namespace {

using Action = SystemScript::Action;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// The session manager of the system bus; of this test's own bus, in truth.
class FakeLogin : public QDBusVirtualObject {
public:
    FakeLogin() : bus_(QDBusConnection::connectToBus(QDBusConnection::SystemBus, "fake-login")) {
        bus_.registerVirtualObject("/org/freedesktop/login1", this, QDBusConnection::SubPath);
        bus_.registerService("org.freedesktop.login1");
    }
    ~FakeLogin() override {
        bus_.unregisterService("org.freedesktop.login1");
        QDBusConnection::disconnectFromBus("fake-login");
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        QString call = message.path() + ' ' + message.interface() + '.' + message.member();
        for (const QVariant& argument : message.arguments()) {
            call += ' ' + argument.toString();
        }
        calls.append(call);
        return bus_.send(refuses
                             ? message.createErrorReply("org.freedesktop.DBus.Error.AccessDenied", "Not you")
                             : message.createReply());
    }

    QStringList calls;
    bool refuses = false;

private:
    QDBusConnection bus_;
};

class LinuxActions : public ::testing::Test {
protected:
    void run(Action action, std::string address = {}) {
        runScript(scripts_, log_, {.action = action, .address = std::move(address)});
    }
    bool logs(std::size_t count) {
        return waitFor([&] { return log_.lines().size() >= count; });
    }

    FakeLog log_;
    LinuxScripts scripts_{[this](const std::string& error) { logScriptError(log_, error); }};
    Programs programs_;
};

// Volume, with a tool that keeps its value in a file and takes its time.

const QByteArray slowWpctl = R"sh(
sleep 0.02
echo "$@" >> "$here/calls"
case $1 in
get-volume) echo "Volume: $(cat "$here/volume")" ;;
set-volume)
    percent=${3%?}
    printf '%d.%02d' $((percent / 100)) $((percent % 100)) > "$here/volume" ;;
esac
)sh";

class VolumeAction : public LinuxActions {
protected:
    void startAt(const QByteArray& volume) {
        programs_.add("wpctl", slowWpctl);
        programs_.write("volume", volume);
    }
    bool becomes(const QByteArray& volume) {
        return waitFor([&] { return programs_.read("volume") == volume; });
    }
    bool hasSet(int times) {
        return waitFor([&] { return programs_.read("calls").count("set-volume") == times; });
    }
};

TEST_F(VolumeAction, SixInARowRaiseByThirtyEachFromTheOneBefore) {
    startAt("0.40");
    QElapsedTimer timer;
    timer.start();
    for (int count = 0; count < 6; ++count) {
        run(Action::volumeUp);
    }
    EXPECT_LT(timer.elapsed(), 200) << "the caller had to wait";
    EXPECT_TRUE(becomes("0.70"));
    EXPECT_TRUE(hasSet(6));
    EXPECT_EQ(programs_.read("calls").split('\n').first(4),
              QByteArrayList({"get-volume @DEFAULT_AUDIO_SINK@", "set-volume @DEFAULT_AUDIO_SINK@ 45%",
                              "get-volume @DEFAULT_AUDIO_SINK@", "set-volume @DEFAULT_AUDIO_SINK@ 50%"}));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(VolumeAction, ReadsAFractionToTheNearestPoint) {
    startAt("0.29"); // a hundred times this is a little less than 29
    run(Action::volumeUp);
    EXPECT_TRUE(becomes("0.34"));
    programs_.write("volume", "0.296");
    run(Action::volumeDown);
    EXPECT_TRUE(becomes("0.25"));
}

TEST_F(VolumeAction, StopsAtTheTop) {
    startAt("0.97 [MUTED]");
    run(Action::volumeUp);
    EXPECT_TRUE(becomes("1.00"));
    run(Action::volumeUp);
    EXPECT_TRUE(hasSet(2));
    EXPECT_TRUE(becomes("1.00"));
}

TEST_F(VolumeAction, UpNeverLowersAVolumeBeyondTheTopAndDownGoesByItsStep) {
    startAt("1.40");
    run(Action::volumeUp);
    EXPECT_TRUE(hasSet(1));
    EXPECT_TRUE(becomes("1.40"));
    run(Action::volumeDown);
    EXPECT_TRUE(becomes("1.35"));
}

TEST_F(VolumeAction, StopsAtTheBottom) {
    startAt("0.07");
    run(Action::volumeDown);
    run(Action::volumeDown);
    EXPECT_TRUE(hasSet(2));
    EXPECT_TRUE(becomes("0.00"));
}

TEST_F(VolumeAction, UsesTheOtherToolWhereTheFirstHasNoSoundServer) {
    programs_.add("wpctl", "echo 'Could not connect' >&2; exit 1\n");
    programs_.add("pactl", R"sh(
case $1 in
get-sink-volume)
    echo "Volume: front-left: 29491 /  45% / -20.81 dB,   front-right: 29491 /  45% / -20.81 dB"
    echo "        balance 0.00" ;;
set-sink-volume) echo "$@" > "$here/set" ;;
esac
)sh");
    run(Action::volumeDown);
    EXPECT_TRUE(waitFor([&] { return programs_.read("set") == "set-sink-volume @DEFAULT_SINK@ 40%\n"; }));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(VolumeAction, LogsOneErrorForEachActionWithoutAnyTool) {
    programs_.hideAllOthers();
    run(Action::volumeUp);
    run(Action::volumeDown);
    EXPECT_THAT(log_.lines(), ElementsAre("[WebSocketServer] AppleScript Error: The volume can't be changed: "
                                          "neither wpctl nor pactl is installed.",
                                          "[WebSocketServer] AppleScript Error: The volume can't be changed: "
                                          "neither wpctl nor pactl is installed."));
}

TEST_F(VolumeAction, LogsOneErrorAndGoesOnWhenTheToolFails) {
    programs_.hideAllOthers();
    programs_.add("wpctl", "[ -e \"$here/broken\" ] && { echo 'no sink' >&2; exit 3; }\n" + slowWpctl);
    programs_.write("volume", "0.50");
    programs_.write("broken", "");
    run(Action::volumeUp);
    ASSERT_TRUE(logs(1));
    EXPECT_THAT(log_.take(), ElementsAre("[WebSocketServer] AppleScript Error: wpctl: no sink"));
    QFile::remove(programs_.path("broken"));
    run(Action::volumeUp);
    EXPECT_TRUE(becomes("0.55"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

/// A real sound server with a sink that goes nowhere.
TEST_F(LinuxActions, ChangeTheVolumeOfARealSoundServer) {
    QProcess server;
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    server.start("pulseaudio",
                 {"--daemonize=no", "-n", "--exit-idle-time=-1", "--disable-shm=true",
                  "--load=module-null-sink sink_name=nowhere", "--load=module-native-protocol-unix"});
    const auto volume = [] {
        QProcess tool;
        tool.start("pactl", {"get-sink-volume", "nowhere"});
        tool.waitForFinished(5000);
        const QString answer = tool.readAllStandardOutput();
        return answer.section('/', 1, 1).trimmed();
    };
    ASSERT_TRUE(waitFor([&] {
        return QProcess::execute("pactl", {"set-sink-volume", "nowhere", "30%"}) == 0;
    }));
    ASSERT_EQ(volume(), "30%");
    for (int count = 0; count < 6; ++count) {
        run(Action::volumeUp);
    }
    EXPECT_TRUE(waitFor([&] { return volume() == "60%"; })) << volume().toStdString();
    run(Action::volumeDown);
    EXPECT_TRUE(waitFor([&] { return volume() == "55%"; })) << volume().toStdString();
    EXPECT_THAT(log_.lines(), IsEmpty());
    server.terminate();
    EXPECT_TRUE(server.waitForFinished(5000));
}

// Addresses.

TEST_F(LinuxActions, OpenAnAddressAsOneArgumentAndThroughNoShell) {
    programs_.add("xdg-open",
                  "printf '%s\\n' \"$#\" \"$@\" > \"$here/part\"; mv \"$here/part\" \"$here/got\"\n");
    const std::string address = "https://example.org/a b?c=d&e=$(touch hacked);'\"`x`\\";
    run(Action::openLocation, address);
    EXPECT_TRUE(waitFor([&] { return programs_.read("got").toStdString() == "1\n" + address + "\n"; }))
        << programs_.read("got").toStdString();
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinuxActions, NeverTakeAnAddressForAnOption) {
    programs_.add("xdg-open", "touch \"$here/got\"\n");
    run(Action::openLocation, "--version");
    run(Action::openLocation, "");
    EXPECT_THAT(log_.lines(), ElementsAre("[WebSocketServer] AppleScript Error: Not an address: --version",
                                          "[WebSocketServer] AppleScript Error: Not an address: "));
}

TEST_F(LinuxActions, LogAnAddressThatCannotBeOpened) {
    programs_.add("xdg-open", "exit 4\n");
    run(Action::openLocation, "nonsense:");
    ASSERT_TRUE(logs(1));
    EXPECT_THAT(log_.lines(), ElementsAre("[WebSocketServer] AppleScript Error: xdg-open: exit code 4"));
}

TEST_F(LinuxActions, LogAProgramThatCannotBeStarted) {
    programs_.write("xdg-open", "not a program");
    QFile::setPermissions(programs_.path("xdg-open"), QFile::ReadOwner | QFile::ExeOwner);
    run(Action::openLocation, "https://example.org");
    ASSERT_TRUE(logs(1));
    processPending();
    ASSERT_EQ(log_.lines().size(), 1U);
    EXPECT_THAT(log_.lines()[0], HasSubstr("[WebSocketServer] AppleScript Error: xdg-open: "));
}

// Trash. The folder for data belongs to this test.

class TrashAction : public LinuxActions {
protected:
    TrashAction() {
        EXPECT_FALSE(qEnvironmentVariableIsEmpty("XDG_DATA_HOME"));
        for (const QString& folder : {QString("files/folder/inner"), QString("info")}) {
            EXPECT_TRUE(trash_.mkpath(folder));
        }
        for (const QString& name : {QString("files/note.txt"), QString("files/folder/inner/deep.txt"),
                                    QString("info/note.txt.trashinfo"), QString("info/folder.trashinfo")}) {
            QFile file(trash_.filePath(name));
            EXPECT_TRUE(file.open(QFile::WriteOnly));
            file.write("[Trash Info]\nPath=/nowhere/note.txt\nDeletionDate=2024-01-01T00:00:00\n");
        }
    }
    bool becomesEmpty() {
        return waitFor([&] { return isEmpty("files") && isEmpty("info"); });
    }
    bool isEmpty(const QString& folder) const { return QDir(trash_.filePath(folder)).isEmpty(); }

    const QDir trash_{QString::fromUtf8(qgetenv("XDG_DATA_HOME")) + "/Trash"};
};

TEST_F(TrashAction, EmptiesTheTrash) {
    run(Action::emptyTrash);
    EXPECT_TRUE(becomesEmpty());
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(TrashAction, AsksTheDesktopFirstWhichKnowsTheTrashOfOtherDisks) {
    programs_.add("gio", "echo \"$@\" > \"$here/got\"\n");
    run(Action::emptyTrash);
    EXPECT_TRUE(becomesEmpty());
    EXPECT_EQ(programs_.read("got"), "trash --empty\n");
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(TrashAction, EmptiesTheTrashWithoutTheDesktopsHelpToo) {
    programs_.hideAllOthers();
    run(Action::emptyTrash);
    EXPECT_TRUE(becomesEmpty());
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(TrashAction, DeletesALinkAndNotWhatItPointsTo) {
    QTemporaryDir outside;
    QFile kept(outside.filePath("kept"));
    ASSERT_TRUE(kept.open(QFile::WriteOnly));
    ASSERT_TRUE(QFile::link(outside.path(), trash_.filePath("files/link")));
    run(Action::emptyTrash);
    EXPECT_TRUE(becomesEmpty());
    EXPECT_TRUE(kept.exists());
}

TEST_F(TrashAction, LogsOnceWhatCannotBeDeleted) {
    programs_.hideAllOthers();
    ASSERT_TRUE(QDir(trash_.filePath("info")).removeRecursively());
    QFile notAFolder(trash_.filePath("info"));
    ASSERT_TRUE(notAFolder.open(QFile::WriteOnly));
    run(Action::emptyTrash);
    ASSERT_TRUE(logs(1));
    EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("[WebSocketServer] AppleScript Error: ")));
    EXPECT_TRUE(isEmpty("files"));
    notAFolder.remove();
}

TEST_F(TrashAction, IsContentWithoutATrash) {
    programs_.hideAllOthers();
    ASSERT_TRUE(QDir(trash_).removeRecursively());
    run(Action::emptyTrash);
    run(Action::openLocation, "");
    // The worker has finished once the next round through it has.
    QThreadPool::globalInstance()->waitForDone();
    processPending();
    EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("Not an address")));
}

// The session manager.

TEST_F(LinuxActions, LockTheSession) {
    FakeLogin login;
    run(Action::lockScreen);
    ASSERT_TRUE(waitFor([&] { return !login.calls.isEmpty(); }));
    EXPECT_EQ(login.calls,
              QStringList("/org/freedesktop/login1/session/auto org.freedesktop.login1.Session.Lock"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinuxActions, SleepWithoutAskingForAPassword) {
    FakeLogin login;
    run(Action::sleep);
    ASSERT_TRUE(waitFor([&] { return !login.calls.isEmpty(); }));
    EXPECT_EQ(login.calls, QStringList("/org/freedesktop/login1 org.freedesktop.login1.Manager.Suspend false"));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinuxActions, LogARefusalOfTheSessionManager) {
    FakeLogin login;
    login.refuses = true;
    run(Action::sleep);
    ASSERT_TRUE(logs(1));
    EXPECT_THAT(log_.lines(), ElementsAre("[WebSocketServer] AppleScript Error: "
                                          "org.freedesktop.DBus.Error.AccessDenied: Not you"));
}

TEST_F(LinuxActions, LogAMissingSessionManager) {
    run(Action::lockScreen);
    ASSERT_TRUE(logs(1));
    EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("[WebSocketServer] AppleScript Error: "
                                                    "org.freedesktop.DBus.Error.ServiceUnknown")));
}

} // namespace

} // namespace velloway::test
