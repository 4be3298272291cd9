#include "hosts/linux/input/VirtualDevices.h"

#include "hosts/linux/input/Keysyms.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

#include <virtual-devices-client.h>
#include <wayland-client.h>

namespace velloway {

namespace {

using namespace std::chrono_literals;

/// A compositor drops a program that leaves too many events unread, so long texts come in pieces with a pause.
constexpr std::size_t pieceLength = 32;
constexpr auto pieceTime = 20ms;
/// Programs on the compositor's X server look up late what a key means.
constexpr auto lookUpTime = 400ms;

constexpr std::uint32_t isPressed = 1;
constexpr std::uint32_t isReleased = 0;
constexpr std::uint32_t xkbFormat = 1;

// The kernel's numbers.
constexpr std::uint32_t leftButton = 0x110;
constexpr std::uint32_t rightButton = 0x111;

/// Milliseconds of any clock.
std::uint32_t now() {
    const auto time = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
}

/// As far as the wire can count.
wl_fixed_t fixed(double value) {
    constexpr double most = 8'000'000;
    return wl_fixed_from_double(std::isnan(value) ? 0 : std::clamp(value, -most, most));
}

template <class Interface>
Interface* bind(wl_registry* registry, std::uint32_t name, const wl_interface& interface) {
    return static_cast<Interface*>(wl_registry_bind(registry, name, &interface, 1));
}

} // namespace

struct VirtualDevices::Listeners {
    static void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t /*version*/) {
        auto& self = *static_cast<VirtualDevices*>(data);
        const std::string_view offered = interface;
        if (offered == wl_seat_interface.name && !self.seat_) {
            self.seat_ = bind<wl_seat>(registry, name, wl_seat_interface);
        } else if (offered == zwp_virtual_keyboard_manager_v1_interface.name) {
            self.keyboards_ = bind<zwp_virtual_keyboard_manager_v1>(registry, name,
                                                                    zwp_virtual_keyboard_manager_v1_interface);
        } else if (offered == zwlr_virtual_pointer_manager_v1_interface.name) {
            self.pointers_ = bind<zwlr_virtual_pointer_manager_v1>(registry, name,
                                                                   zwlr_virtual_pointer_manager_v1_interface);
        }
    }
    static void globalRemove(void*, wl_registry*, std::uint32_t) {}
};

std::unique_ptr<VirtualDevices> VirtualDevices::connect() {
    // An inherited connection is the toolkit's.
    if (std::getenv("WAYLAND_SOCKET")) {
        return nullptr;
    }
    std::unique_ptr<VirtualDevices> devices(new VirtualDevices);
    return devices->open() ? std::move(devices) : nullptr;
}

bool VirtualDevices::open() {
    display_ = wl_display_connect(nullptr);
    if (!display_) {
        return false;
    }
    wl_registry* registry = wl_display_get_registry(display_);
    static constexpr wl_registry_listener listener{.global = &Listeners::global,
                                                   .global_remove = &Listeners::globalRemove};
    wl_registry_add_listener(registry, &listener, this);
    const bool answered = wl_display_roundtrip(display_) >= 0;
    wl_registry_destroy(registry);
    if (!answered || !seat_ || !keyboards_ || !pointers_) {
        return false;
    }
    keyboard_ = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards_, seat_);
    pointer_ = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers_, seat_);
    provide({});
    // A compositor that lets only some programs have a keyboard says so by ending the connection.
    if (wl_display_roundtrip(display_) < 0) {
        return false;
    }
    thread_ = std::thread([this] { run(); });
    return true;
}

VirtualDevices::~VirtualDevices() {
    if (thread_.joinable()) {
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
        }
        wake_.notify_one();
        thread_.join();
    }
    for (void* proxy : {static_cast<void*>(keyboards_), static_cast<void*>(seat_)}) {
        if (proxy) {
            wl_proxy_destroy(static_cast<wl_proxy*>(proxy));
        }
    }
    if (keyboard_) {
        zwp_virtual_keyboard_v1_destroy(keyboard_);
    }
    if (pointer_) {
        zwlr_virtual_pointer_v1_destroy(pointer_);
    }
    if (pointers_) {
        zwlr_virtual_pointer_manager_v1_destroy(pointers_);
    }
    if (display_) {
        wl_display_flush(display_);
        wl_display_disconnect(display_);
    }
}

bool VirtualDevices::isTrusted() {
    return wl_display_get_error(display_) == 0;
}

void VirtualDevices::pressKey(Key key, Modifiers modifiers) {
    post([this, keysyms = keysymsOf(key, modifiers)] { sendTogether(keysyms); });
}

void VirtualDevices::pressMediaKey(MediaKey key) {
    post([this, keysym = keysymOf(key)] { sendTogether({&keysym, 1}); });
}

void VirtualDevices::typeText(std::string_view text) {
    post([this, keysyms = keysymsOf(text)] { sendInTurn(keysyms); });
}

void VirtualDevices::post(Job job) {
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    wake_.notify_one();
}

void VirtualDevices::run() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return isEnding_ || !jobs_.empty(); });
        if (isEnding_) {
            return;
        }
        const Job job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        if (isTrusted()) {
            job();
            // Waits until the compositor has handled it all, and reads what it has sent since.
            wl_display_roundtrip(display_);
        }
        lock.lock();
    }
}

bool VirtualDevices::isEnding() {
    const std::lock_guard lock(mutex_);
    return isEnding_;
}

void VirtualDevices::sendTogether(std::span<const std::uint32_t> keysyms) {
    if (provide(keysyms) < keysyms.size()) {
        return;
    }
    std::uint32_t held = 0;
    for (const std::uint32_t keysym : keysyms) {
        sendKey(keysym, true);
        if (const std::uint32_t modifier = VirtualKeymap::modifierOf(keysym)) {
            zwp_virtual_keyboard_v1_modifiers(keyboard_, held |= modifier, 0, 0, 0);
        }
    }
    for (auto keysym = keysyms.rbegin(); keysym != keysyms.rend(); ++keysym) {
        sendKey(*keysym, false);
        if (const std::uint32_t modifier = VirtualKeymap::modifierOf(*keysym)) {
            zwp_virtual_keyboard_v1_modifiers(keyboard_, held &= ~modifier, 0, 0, 0);
        }
    }
}

void VirtualDevices::sendInTurn(std::span<const std::uint32_t> keysyms) {
    while (!keysyms.empty() && isTrusted() && !isEnding()) {
        const std::size_t count = provide(keysyms.first(std::min(keysyms.size(), pieceLength)));
        for (const std::uint32_t keysym : keysyms.first(count)) {
            sendKey(keysym, true);
            sendKey(keysym, false);
        }
        keysyms = keysyms.subspan(count);
        if (wl_display_roundtrip(display_) < 0 || count == 0) {
            return;
        }
        if (!keysyms.empty()) {
            std::this_thread::sleep_for(pieceTime);
        }
    }
}

/// Sees to it that these keysyms have keys; returns how many of them do, from the first.
std::size_t VirtualDevices::provide(std::span<const std::uint32_t> keysyms) {
    const auto provided = keymap_.provide(keysyms);
    if (provided.isRestarted) {
        std::this_thread::sleep_for(lookUpTime);
    }
    return !provided.isExtended || sendKeymap() ? provided.count : 0;
}

void VirtualDevices::sendKey(std::uint32_t keysym, bool isDown) {
    if (const auto keycode = keymap_.keycodeOf(keysym)) {
        zwp_virtual_keyboard_v1_key(keyboard_, now(), *keycode, isDown ? isPressed : isReleased);
    }
}

bool VirtualDevices::sendKeymap() {
    const std::string text = keymap_.text();
    const std::size_t size = text.size() + 1;
    const int file = ::memfd_create("velloway-keymap", MFD_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const bool isWritten = ::write(file, text.c_str(), size) == static_cast<ssize_t>(size);
    if (isWritten) {
        zwp_virtual_keyboard_v1_keymap(keyboard_, xkbFormat, file, static_cast<std::uint32_t>(size));
        wl_display_flush(display_);
    }
    ::close(file);
    return isWritten;
}

/// A request that the compositor has no room for would end the connection.
bool VirtualDevices::canSend() {
    pollfd socket{.fd = wl_display_get_fd(display_), .events = POLLOUT, .revents = 0};
    return isTrusted() && ::poll(&socket, 1, 0) == 1 && (socket.revents & POLLOUT) != 0;
}

void VirtualDevices::movePointer(double dx, double dy) {
    if (canSend()) {
        zwlr_virtual_pointer_v1_motion(pointer_, now(), fixed(dx), fixed(dy));
        zwlr_virtual_pointer_v1_frame(pointer_);
        wl_display_flush(display_);
    }
}

void VirtualDevices::click(MouseButton button) {
    if (!canSend()) {
        return;
    }
    const std::uint32_t number = button == MouseButton::right ? rightButton : leftButton;
    for (const std::uint32_t state : {isPressed, isReleased}) {
        zwlr_virtual_pointer_v1_button(pointer_, now(), number, state);
        zwlr_virtual_pointer_v1_frame(pointer_);
    }
    wl_display_flush(display_);
}

} // namespace velloway
