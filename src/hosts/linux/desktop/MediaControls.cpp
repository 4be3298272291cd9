#include "hosts/linux/desktop/MediaControls.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QRegularExpression>
#include <QStringList>

#include <utility>

namespace velloway {

namespace {

constexpr int volumeStep = 5;
/// A player that hangs keeps the others waiting no longer.
constexpr int playerTimeoutMilliseconds = 1000;

const QString playerPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString playerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");

template <typename Reply, typename Then> void call(QObject* owner, const QDBusMessage& message, Then then) {
    auto* watcher = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(message, playerTimeoutMilliseconds), owner);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, owner,
                     [then = std::move(then)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         then(Reply(*finished));
                     });
}

/// The higher, the likelier is it the player that the user means.
int rankOf(const QString& status) {
    if (status == "Playing") {
        return 3;
    }
    return status == "Paused" ? 2 : 1;
}

} // namespace

/// The players that have not said yet what they do, and the best of the others.
struct MediaControls::Search {
    QString method;
    Done done;
    qsizetype waiting = 0;
    int rank = 0;
    QString best;
};

void MediaControls::press(MediaKey key, Done done) {
    switch (key) {
    case MediaKey::playPause:
        return askPlayer("PlayPause", std::move(done));
    case MediaKey::nextTrack:
        return askPlayer("Next", std::move(done));
    case MediaKey::previousTrack:
        return askPlayer("Previous", std::move(done));
    case MediaKey::soundUp:
        return done(!volume_.change(volumeStep));
    case MediaKey::soundDown:
        return done(!volume_.change(-volumeStep));
    case MediaKey::mute:
        return done(!volume_.toggleMute());
    case MediaKey::screenBrightnessUp:
    case MediaKey::screenBrightnessDown:
    case MediaKey::keyboardLightUp:
    case MediaKey::keyboardLightDown:
        break;
    }
    done(false);
}

void MediaControls::askPlayer(const QString& method, Done done) {
    const auto search = std::make_shared<Search>(Search{.method = method, .done = std::move(done)});
    const auto message = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                        "org.freedesktop.DBus", "ListNames");
    call<QDBusPendingReply<QStringList>>(this, message, [this, search](const auto& names) {
        const QStringList players =
            names.isError()
                ? QStringList()
                : names.value().filter(QRegularExpression(QStringLiteral("^org\\.mpris\\.MediaPlayer2\\.")));
        if (players.isEmpty()) {
            return search->done(false);
        }
        search->waiting = players.size();
        for (const QString& player : players) {
            askStatus(search, player);
        }
    });
}

void MediaControls::askStatus(const std::shared_ptr<Search>& search, const QString& player) {
    auto message = QDBusMessage::createMethodCall(player, playerPath, "org.freedesktop.DBus.Properties", "Get");
    message << playerInterface << QStringLiteral("PlaybackStatus");
    call<QDBusPendingReply<QDBusVariant>>(this, message, [search, player](const auto& status) {
        if (!status.isError()) {
            const int rank = rankOf(status.value().variant().toString());
            if (rank > search->rank) {
                search->rank = rank;
                search->best = player;
            }
        }
        if (--search->waiting > 0) {
            return;
        }
        if (search->rank > 0) {
            QDBusConnection::sessionBus().send(
                QDBusMessage::createMethodCall(search->best, playerPath, playerInterface, search->method));
        }
        search->done(search->rank > 0);
    });
}

} // namespace velloway
