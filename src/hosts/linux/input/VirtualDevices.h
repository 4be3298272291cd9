#pragma once

#include "hosts/linux/input/LinuxInput.h"
#include "hosts/linux/input/VirtualKeymap.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

struct wl_display;
struct wl_proxy;
struct wl_seat;
struct zwlr_virtual_pointer_manager_v1;
struct zwlr_virtual_pointer_v1;
struct zwp_virtual_keyboard_manager_v1;
struct zwp_virtual_keyboard_v1;

namespace velloway {

/// Input on a Wayland compositor that lets any program add a keyboard and a pointer, over a connection of its
/// own. Such a compositor asks nobody, so there is nothing to permit. The keyboard's modifiers are its own:
/// those that the user holds elsewhere don't mix with what is typed here.
///
/// Keys and texts are typed in the order of the calls on a thread of its own, no faster than programs read.
/// Destruction drops what is still to be typed.
class VirtualDevices : public LinuxInput {
public:
    /// Null where there is no Wayland compositor or it offers no such devices. Waits for the compositor's
    /// answers.
    static std::unique_ptr<VirtualDevices> connect();
    ~VirtualDevices() override;

    bool isTrusted() override;
    bool isTrustedWithPrompt() override { return isTrusted(); }

    void pressKey(Key key, Modifiers modifiers) override;
    void typeText(std::string_view text) override;
    void pressMediaKey(MediaKey key) override;
    void movePointer(double dx, double dy) override;
    void click(MouseButton button) override;

private:
    using Job = std::function<void()>;
    struct Listeners;

    VirtualDevices() = default;
    bool open();
    void post(Job job);
    void run();
    bool isEnding();

    void sendTogether(std::span<const std::uint32_t> keysyms);
    void sendInTurn(std::span<const std::uint32_t> keysyms);
    std::size_t provide(std::span<const std::uint32_t> keysyms);
    void sendKey(std::uint32_t keysym, bool isDown);
    bool sendKeymap();
    /// Whether more can be sent to the compositor now.
    bool canSend();

    wl_display* display_ = nullptr;
    wl_seat* seat_ = nullptr;
    zwp_virtual_keyboard_manager_v1* keyboards_ = nullptr;
    zwlr_virtual_pointer_manager_v1* pointers_ = nullptr;
    zwp_virtual_keyboard_v1* keyboard_ = nullptr;
    zwlr_virtual_pointer_v1* pointer_ = nullptr;
    VirtualKeymap keymap_;

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> jobs_;
    bool isEnding_ = false;
    std::thread thread_;
};

} // namespace velloway
