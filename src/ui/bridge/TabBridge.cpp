#include "bridge/TabBridge.h"

#include <QMetaObject>

namespace velloway {

TabBridge::TabBridge(QString file) : file_(std::move(file)) {}

TabBridge::~TabBridge() = default;

void TabBridge::setOnScreen(bool onScreen) {
    onScreen_ = onScreen;
    if (onScreen) {
        for (Reading& reading : readings_) {
            reading.isStale = true;
        }
        refresh();
    }
}

void TabBridge::changed(std::size_t index) {
    readings_[index].isStale = true;
    if (onScreen_ && !std::exchange(isScheduled_, true)) {
        QMetaObject::invokeMethod(
            this, [this] { refresh(); }, Qt::QueuedConnection);
    }
}

void TabBridge::refresh() {
    isScheduled_ = false;
    if (!onScreen_) {
        return;
    }
    for (Reading& reading : readings_) {
        if (std::exchange(reading.isStale, false)) {
            reading.read();
        }
    }
}

} // namespace velloway
