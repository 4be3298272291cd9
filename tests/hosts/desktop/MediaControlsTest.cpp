#include "hosts/linux/desktop/MediaControls.h"

#include "Programs.h"
#include "desktop/WaitFor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <optional>
#include <string>
#include <vector>

namespace velloway::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A player of music on the session's bus, on a connection of its own.
class Player : public QDBusVirtualObject {
public:
    /// One without a status answers with an error.
    explicit Player(const QString& name, const std::optional<QString>& status)
        : name_("org.mpris.MediaPlayer2." + name),
          status_(status),
          bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)) {
        bus_.registerVirtualObject("/org/mpris/MediaPlayer2", this);
        EXPECT_TRUE(bus_.registerService(name_));
    }
    ~Player() override {
        bus_.unregisterService(name_);
        const QString connection = bus_.name();
        bus_ = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(connection);
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        if (message.member() != "Get") {
            asked.push_back((message.interface() + '.' + message.member()).toStdString());
            return true;
        }
        const bool isStatus =
            message.arguments() == QVariantList{"org.mpris.MediaPlayer2.Player", "PlaybackStatus"};
        return bus_.send(isStatus && status_
                             ? message.createReply(QVariant::fromValue(QDBusVariant(*status_)))
                             : message.createErrorReply("org.freedesktop.DBus.Error.Failed", "Not now"));
    }

    std::vector<std::string> asked;

private:
    QString name_;
    std::optional<QString> status_;
    QDBusConnection bus_;
};

class MediaControlsTest : public ::testing::Test {
protected:
    /// Whether something took the key.
    bool press(MediaKey key) {
        std::optional<bool> answer;
        controls_.press(key, [&](bool isDone) { answer = isDone; });
        EXPECT_TRUE(waitFor([&] { return answer.has_value(); }));
        return answer.value_or(false);
    }

    std::vector<std::string> errors_;
    MediaControls controls_{[this](const std::string& error) { errors_.push_back(error); }};
    Programs programs_;
};

TEST_F(MediaControlsTest, EachKeyOfThePlayerIsItsOwnCall) {
    Player player("one", "Playing");
    EXPECT_TRUE(press(MediaKey::playPause));
    EXPECT_TRUE(press(MediaKey::nextTrack));
    EXPECT_TRUE(press(MediaKey::previousTrack));
    EXPECT_TRUE(waitFor([&] { return player.asked.size() == 3; }));
    EXPECT_THAT(player.asked,
                ElementsAre("org.mpris.MediaPlayer2.Player.PlayPause", "org.mpris.MediaPlayer2.Player.Next",
                            "org.mpris.MediaPlayer2.Player.Previous"));
}

TEST_F(MediaControlsTest, OfSeveralPlayersTheOneThatPlaysIsAsked) {
    Player stopped("a", "Stopped");
    Player paused("b", "Paused");
    Player playing("c", "Playing");
    Player alsoPaused("d", "Paused");
    EXPECT_TRUE(press(MediaKey::playPause));
    EXPECT_TRUE(waitFor([&] { return !playing.asked.empty(); }));
    EXPECT_THAT(stopped.asked, IsEmpty());
    EXPECT_THAT(paused.asked, IsEmpty());
    EXPECT_THAT(alsoPaused.asked, IsEmpty());
}

TEST_F(MediaControlsTest, WhereNonePlaysOneThatPausesIsAsked) {
    Player stopped("a", "Stopped");
    Player paused("b", "Paused");
    Player silent("c", std::nullopt);
    EXPECT_TRUE(press(MediaKey::nextTrack));
    EXPECT_TRUE(waitFor([&] { return !paused.asked.empty(); }));
    EXPECT_THAT(stopped.asked, IsEmpty());
    EXPECT_THAT(silent.asked, IsEmpty());
}

TEST_F(MediaControlsTest, AStoppedPlayerIsBetterThanNone) {
    Player stopped("a", "Stopped");
    EXPECT_TRUE(press(MediaKey::playPause));
    EXPECT_TRUE(waitFor([&] { return !stopped.asked.empty(); }));
}

TEST_F(MediaControlsTest, NothingTakesTheKeyWhereNoPlayerAnswers) {
    EXPECT_FALSE(press(MediaKey::playPause));
    Player silent("c", std::nullopt);
    EXPECT_FALSE(press(MediaKey::playPause));
    EXPECT_THAT(silent.asked, IsEmpty());
}

TEST_F(MediaControlsTest, TheKeysOfTheVolumeChangeIt) {
    programs_.add("wpctl", R"sh(
echo "$@" >> "$here/calls"
[ "$1" != get-volume ] || echo "Volume: 0.40"
)sh");
    EXPECT_TRUE(press(MediaKey::soundUp));
    EXPECT_TRUE(press(MediaKey::soundDown));
    EXPECT_TRUE(press(MediaKey::mute));
    EXPECT_TRUE(waitFor([&] { return programs_.read("calls").count('\n') == 5; }));
    EXPECT_EQ(programs_.read("calls").split('\n'),
              QByteArrayList({"get-volume @DEFAULT_AUDIO_SINK@", "set-volume @DEFAULT_AUDIO_SINK@ 45%",
                              "get-volume @DEFAULT_AUDIO_SINK@", "set-volume @DEFAULT_AUDIO_SINK@ 35%",
                              "set-mute @DEFAULT_AUDIO_SINK@ toggle", ""}));
    EXPECT_THAT(errors_, IsEmpty());
}

TEST_F(MediaControlsTest, TheOtherToolTurnsTheSoundOffWhereTheFirstHasNoSoundServer) {
    programs_.add("wpctl", "echo 'Could not connect' >&2; exit 1\n");
    programs_.add("pactl", R"(echo "$@" > "$here/set")");
    EXPECT_TRUE(press(MediaKey::mute));
    EXPECT_TRUE(waitFor([&] { return programs_.read("set") == "set-sink-mute @DEFAULT_SINK@ toggle\n"; }));
    EXPECT_THAT(errors_, IsEmpty());
}

TEST_F(MediaControlsTest, AFailureOfEveryToolIsReportedOnce) {
    programs_.add("wpctl", "echo 'Could not connect' >&2; exit 1\n");
    programs_.add("pactl", "echo 'Connection refused' >&2; exit 1\n");
    EXPECT_TRUE(press(MediaKey::mute));
    EXPECT_TRUE(waitFor([&] { return !errors_.empty(); }));
    EXPECT_THAT(errors_, ElementsAre(testing::HasSubstr("Connection refused")));
}

TEST_F(MediaControlsTest, NothingTakesTheKeysOfTheVolumeWithoutATool) {
    programs_.hideAllOthers();
    EXPECT_FALSE(press(MediaKey::soundUp));
    EXPECT_FALSE(press(MediaKey::mute));
    EXPECT_THAT(errors_, IsEmpty());
}

TEST_F(MediaControlsTest, NothingTakesTheKeysOfLights) {
    for (const MediaKey key : {MediaKey::screenBrightnessUp, MediaKey::screenBrightnessDown,
                               MediaKey::keyboardLightUp, MediaKey::keyboardLightDown}) {
        EXPECT_FALSE(press(key));
    }
}

} // namespace

} // namespace velloway::test
