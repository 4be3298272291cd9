#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace velloway::test {

/// Runs the event loop until `condition` holds; false when the bound has passed first. Main thread.
template <class Condition>
bool waitFor(Condition condition, std::chrono::milliseconds bound = std::chrono::seconds(10)) {
    const QDeadlineTimer deadline(bound);
    // Wakes the loop, for conditions that change without an event of this thread.
    QTimer tick;
    tick.start(std::chrono::milliseconds(5));
    while (!condition()) {
        if (deadline.hasExpired()) {
            return condition();
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

/// Handles whatever has already come in, without waiting for more, and deletes what was put off until later. No
/// event loop runs around a test that would do so: a view that has gone would live on, timers and all.
inline void processPending() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace velloway::test
