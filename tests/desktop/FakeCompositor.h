#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct wl_display;
struct wl_event_source;
struct wl_interface;
struct wl_message;
struct wl_resource;
union wl_argument;

namespace velloway::test {

/// A Wayland compositor on a thread of its own that shows nothing, and writes down what it is asked for. While
/// it exists, WAYLAND_DISPLAY names it.
class FakeCompositor {
public:
    /// What it announces, in this order.
    explicit FakeCompositor(const std::vector<const wl_interface*>& globals);
    ~FakeCompositor();
    FakeCompositor(const FakeCompositor&) = delete;
    FakeCompositor& operator=(const FakeCompositor&) = delete;

    /// What has come since the last call, as "interface.request argument argument".
    std::vector<std::string> take();
    /// How many requests wait to be taken.
    std::size_t count();
    /// The content of the file that came last with a keymap.
    std::string keymap();

    /// Runs `act` on the thread of the compositor, and waits for its end.
    void perform(const std::function<void()>& act);
    /// The object of this interface that a client made last; null when there is none. Within `perform`.
    wl_resource* latest(const std::string& interface) const;
    /// A new object for the client of `resource`. Within `perform`.
    wl_resource* make(wl_resource* resource, const wl_interface& interface);
    /// Ends the connections of all clients. Within `perform`.
    void disconnectAll();
    /// A request of this name ends the connection of its client with an error.
    std::string refusedRequest;
    /// Called on the thread of the compositor for each file that a client sends beside a keymap.
    std::function<void(const std::string& type, int file)> receivedFile;

private:
    struct Hooks;

    void run();
    int handle(wl_resource* resource, const wl_message& message, wl_argument* arguments);
    std::string take(const wl_message& message, wl_resource* resource, char kind, std::size_t index,
                     wl_argument* arguments);

    wl_display* display_;
    std::string previous_;
    int wake_;
    wl_event_source* waking_ = nullptr;
    std::mutex mutex_;
    std::deque<std::function<void()>> jobs_;
    std::vector<std::string> requests_;
    std::string keymap_;
    std::vector<std::pair<std::string, wl_resource*>> resources_;
    std::thread thread_;
};

} // namespace velloway::test
