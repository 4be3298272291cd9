#pragma once

#include "hosts/linux/desktop/VolumeControl.h"
#include "platform/InputEvents.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace velloway {

/// Does what media keys are for where no program of the desktop has claimed them: asks the player of music, and
/// changes the volume. Main thread, within a QCoreApplication.
class MediaControls : public QObject {
public:
    using Done = std::function<void(bool isDone)>;

    /// The handler gets what went wrong with the volume.
    explicit MediaControls(VolumeControl::ErrorHandler onError) : volume_(std::move(onError)) {}

    /// Calls `done` once, perhaps inside the call: false when there is nothing here to take the key. Of several
    /// players the one that plays is asked, then one that pauses, then any.
    void press(MediaKey key, Done done);

private:
    struct Search;

    void askPlayer(const QString& method, Done done);
    void askStatus(const std::shared_ptr<Search>& search, const QString& player);

    VolumeControl volume_;
};

} // namespace velloway
