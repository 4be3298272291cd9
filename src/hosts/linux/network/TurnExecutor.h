#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <deque>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace velloway {

/// Handlers that are ready without waiting, run one after the other in one turn of the event loop.
///
/// The event loop asks the system for news between any two handlers. One read brings many small messages, and a
/// system call for each of them would cost as much as handling it. Loop thread only.
class Turn {
public:
    /// `owner` yields what must stay alive while handlers run; null ends the turn.
    Turn(boost::asio::io_context& loop, std::function<std::shared_ptr<void>()> owner)
        : loop_(&loop), owner_(std::move(owner)) {}

    /// Runs `handler` now, and then what it made ready.
    template <class Handler> void run(Handler& handler) {
        if (isRunning_) {
            handler();
            return;
        }
        if (const auto alive = owner_()) {
            isRunning_ = true;
            handler();
            runReady();
        }
    }

    template <class Handler> void add(Handler&& handler) {
        ready_.push_back(std::make_unique<StepOf<std::decay_t<Handler>>>(std::forward<Handler>(handler)));
        if (!isRunning_) {
            schedule();
        }
    }

    /// Drops what is ready.
    void clear() { const auto dropped = std::exchange(ready_, {}); }

    boost::asio::io_context& loop() const { return *loop_; }

private:
    /// So many handlers may run before others get their chance.
    static constexpr int mostSteps = 64;

    struct Step {
        virtual ~Step() = default;
        virtual void run() = 0;
    };
    template <class Handler> struct StepOf final : Step {
        explicit StepOf(Handler&& made) : handler(std::move(made)) {}
        explicit StepOf(const Handler& made) : handler(made) {}
        void run() override { handler(); }
        Handler handler;
    };

    void runReady() {
        for (int count = 0; count < mostSteps && !ready_.empty(); ++count) {
            const auto step = std::move(ready_.front());
            ready_.pop_front();
            step->run();
        }
        isRunning_ = false;
        if (!ready_.empty()) {
            schedule();
        }
    }

    void schedule() {
        if (std::exchange(isScheduled_, true)) {
            return;
        }
        boost::asio::post(*loop_, [this, alive = owner_()] {
            isScheduled_ = false;
            isRunning_ = true;
            runReady();
        });
    }

    boost::asio::io_context* loop_;
    std::function<std::shared_ptr<void>()> owner_;
    std::deque<std::unique_ptr<Step>> ready_;
    bool isRunning_ = false;
    bool isScheduled_ = false;
};

/// Lets asynchronous operations complete in a `Turn`. Their handlers must keep the turn alive.
class TurnExecutor {
public:
    explicit TurnExecutor(Turn& turn) : turn_(&turn), loop_(&turn.loop()) {}

    boost::asio::execution_context& context() const noexcept { return *loop_; }
    void on_work_started() const noexcept { loop_->get_executor().on_work_started(); }
    void on_work_finished() const noexcept { loop_->get_executor().on_work_finished(); }

    template <class Handler, class Allocator> void dispatch(Handler&& handler, const Allocator&) const {
        std::decay_t<Handler> moved(std::forward<Handler>(handler));
        turn_->run(moved);
    }
    template <class Handler, class Allocator> void post(Handler&& handler, const Allocator&) const {
        turn_->add(std::forward<Handler>(handler));
    }
    template <class Handler, class Allocator> void defer(Handler&& handler, const Allocator&) const {
        turn_->add(std::forward<Handler>(handler));
    }

    bool operator==(const TurnExecutor& other) const noexcept { return turn_ == other.turn_; }
    bool operator!=(const TurnExecutor& other) const noexcept { return turn_ != other.turn_; }

private:
    Turn* turn_;
    boost::asio::io_context* loop_;
};

} // namespace velloway
