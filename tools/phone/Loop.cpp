#include "phone/Loop.h"

#include "phone/LoopEngine.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <csignal>

namespace velloway::phone {

Loop::Loop() : engine_(std::make_unique<Engine>()) {}
Loop::~Loop() = default;

void Loop::run() {
    const auto guard = boost::asio::make_work_guard(engine_->context);
    engine_->context.run();
}

void Loop::post(std::function<void()> work) {
    boost::asio::post(engine_->context, std::move(work));
}

void Loop::stop() {
    engine_->context.stop();
}

std::shared_ptr<void> Loop::after(double seconds, std::function<void()> work) {
    const auto timer = std::make_shared<boost::asio::steady_timer>(engine_->context);
    timer->expires_after(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds)));
    // The handler may already be on its way when the timer goes, so it looks whether the timer is still there.
    timer->async_wait([alive = std::weak_ptr(timer), work = std::move(work)](const auto& error) {
        if (const auto keep = alive.lock(); keep && !error) {
            work();
        }
    });
    return timer;
}

std::shared_ptr<void> Loop::onInterrupt(std::function<void()> work) {
    const auto signals = std::make_shared<boost::asio::signal_set>(engine_->context, SIGINT, SIGTERM, SIGHUP);
    signals->async_wait([alive = std::weak_ptr(signals), work = std::move(work)](const auto& error, int) {
        if (const auto keep = alive.lock(); keep && !error) {
            keep->clear();
            work();
        }
    });
    return signals;
}

} // namespace velloway::phone
