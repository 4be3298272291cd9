#pragma once

#include <functional>
#include <memory>

namespace velloway::phone {

/// The one thread on which everything of the phone runs.
class Loop {
public:
    Loop();
    ~Loop();

    /// Returns after `stop`.
    void run();

    // Any thread may call these two.
    void post(std::function<void()> work);
    void stop();

    /// Runs `work` unless what is returned goes first.
    [[nodiscard]] std::shared_ptr<void> after(double seconds, std::function<void()> work);

    /// Runs `work` when the user or the system wants the program to end, unless what is returned goes first.
    /// Only once: the next time the program is killed.
    [[nodiscard]] std::shared_ptr<void> onInterrupt(std::function<void()> work);

    struct Engine;
    Engine& engine() { return *engine_; }

private:
    std::unique_ptr<Engine> engine_;
};

} // namespace velloway::phone
