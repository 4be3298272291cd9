#include "desktop/FakeCompositor.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <future>
#include <stdexcept>
#include <utility>

#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <wayland-server.h>

namespace velloway::test {

namespace {

std::string contentOf(int file) {
    struct stat about {};
    fstat(file, &about);
    std::string text(static_cast<std::size_t>(about.st_size), '\0');
    const auto count = pread(file, text.data(), text.size(), 0);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text;
}

/// As few digits as say it.
std::string fraction(wl_fixed_t value) {
    std::string text = std::to_string(wl_fixed_to_double(value));
    text.erase(text.find_last_not_of('0') + 1);
    return text.ends_with('.') ? text.substr(0, text.size() - 1) : text;
}

} // namespace

/// What the library calls.
struct FakeCompositor::Hooks {
    static int handle(const void*, void* target, std::uint32_t, const wl_message* message,
                      wl_argument* arguments) {
        auto* resource = static_cast<wl_resource*>(target);
        return static_cast<FakeCompositor*>(wl_resource_get_user_data(resource))
            ->handle(resource, *message, arguments);
    }
    static void adopt(FakeCompositor& self, wl_resource* resource) {
        wl_resource_set_dispatcher(resource, &handle, nullptr, &self, &forget);
        self.resources_.emplace_back(wl_resource_get_class(resource), resource);
    }
    static void forget(wl_resource* resource) {
        auto& self = *static_cast<FakeCompositor*>(wl_resource_get_user_data(resource));
        std::erase_if(self.resources_, [=](const auto& each) { return each.second == resource; });
    }
    struct Global {
        FakeCompositor* self;
        const wl_interface* interface;
    };
    static void bind(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        const auto& global = *static_cast<const Global*>(data);
        adopt(*global.self, wl_resource_create(client, global.interface, static_cast<int>(version), id));
    }
    static int wake(int file, std::uint32_t, void* data) {
        auto& self = *static_cast<FakeCompositor*>(data);
        std::uint64_t count = 0;
        if (read(file, &count, sizeof count) != sizeof count) {
            return 0;
        }
        std::deque<std::function<void()>> jobs;
        {
            const std::lock_guard lock(self.mutex_);
            jobs.swap(self.jobs_);
        }
        for (const auto& job : jobs) {
            job();
        }
        return 0;
    }
};

FakeCompositor::FakeCompositor(const std::vector<const wl_interface*>& globals)
    : display_(wl_display_create()), wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    const char* name = wl_display_add_socket_auto(display_);
    if (!name) {
        throw std::runtime_error("the fake compositor has no socket");
    }
    const char* previous = std::getenv("WAYLAND_DISPLAY");
    previous_ = previous ? previous : "";
    setenv("WAYLAND_DISPLAY", name, 1);
    for (const wl_interface* interface : globals) {
        // Lives as long as the display.
        auto* data = new Hooks::Global{this, interface};
        static_cast<void>(wl_global_create(display_, interface, interface->version, data, &Hooks::bind));
    }
    waking_ =
        wl_event_loop_add_fd(wl_display_get_event_loop(display_), wake_, WL_EVENT_READABLE, &Hooks::wake, this);
    thread_ = std::thread([this] { wl_display_run(display_); });
}

FakeCompositor::~FakeCompositor() {
    perform([this] { wl_display_terminate(display_); });
    thread_.join();
    wl_display_destroy_clients(display_);
    wl_event_source_remove(waking_);
    close(wake_);
    wl_display_destroy(display_);
    if (previous_.empty()) {
        unsetenv("WAYLAND_DISPLAY");
    } else {
        setenv("WAYLAND_DISPLAY", previous_.c_str(), 1);
    }
}

std::vector<std::string> FakeCompositor::take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(requests_, {});
}

std::size_t FakeCompositor::count() {
    const std::lock_guard lock(mutex_);
    return requests_.size();
}

std::string FakeCompositor::keymap() {
    const std::lock_guard lock(mutex_);
    return keymap_;
}

void FakeCompositor::perform(const std::function<void()>& act) {
    std::promise<void> done;
    {
        const std::lock_guard lock(mutex_);
        jobs_.emplace_back([&] {
            act();
            wl_display_flush_clients(display_);
            done.set_value();
        });
    }
    const std::uint64_t one = 1;
    if (write(wake_, &one, sizeof one) != sizeof one) {
        throw std::runtime_error("the fake compositor cannot be woken");
    }
    done.get_future().wait();
}

wl_resource* FakeCompositor::latest(const std::string& interface) const {
    const auto found = std::find_if(resources_.rbegin(), resources_.rend(),
                                    [&](const auto& each) { return each.first == interface; });
    return found == resources_.rend() ? nullptr : found->second;
}

wl_resource* FakeCompositor::make(wl_resource* resource, const wl_interface& interface) {
    wl_resource* const made =
        wl_resource_create(wl_resource_get_client(resource), &interface, wl_resource_get_version(resource), 0);
    Hooks::adopt(*this, made);
    return made;
}

void FakeCompositor::disconnectAll() {
    wl_display_destroy_clients(display_);
}

int FakeCompositor::handle(wl_resource* resource, const wl_message& message, wl_argument* arguments) {
    std::string line = std::string(wl_resource_get_class(resource)) + '.' + message.name;
    std::size_t index = 0;
    int file = -1;
    for (const char* kind = message.signature; *kind; ++kind) {
        if (std::isalpha(static_cast<unsigned char>(*kind)) != 0) {
            line += ' ' + take(message, resource, *kind, index, arguments);
            ++index;
            if (*kind == 'h' && message.name != std::string("keymap")) {
                file = arguments[index - 1].h;
            }
        }
    }
    {
        const std::lock_guard lock(mutex_);
        requests_.push_back(std::move(line));
    }
    if (file >= 0 && receivedFile) {
        receivedFile(arguments[index - 2].s, file);
    } else if (file >= 0) {
        close(file);
    }
    if (refusedRequest == message.name) {
        wl_resource_post_error(resource, 0, "refused by the test");
    } else if (message.name == std::string("destroy")) {
        wl_resource_destroy(resource);
    }
    return 0;
}

/// Takes over the argument and returns it as text.
std::string FakeCompositor::take(const wl_message& message, wl_resource* resource, char kind, std::size_t index,
                                 wl_argument* arguments) {
    const wl_argument& argument = arguments[index];
    switch (kind) {
    case 'u':
        return std::to_string(argument.u);
    case 'i':
        return std::to_string(argument.i);
    case 'f':
        return fraction(argument.f);
    case 's':
        return argument.s;
    case 'o':
        return argument.o ? "object" : "none";
    case 'n':
        Hooks::adopt(*this, wl_resource_create(wl_resource_get_client(resource), message.types[index],
                                               wl_resource_get_version(resource), argument.n));
        return "new";
    case 'h':
        if (message.name == std::string("keymap")) {
            const std::lock_guard lock(mutex_);
            keymap_ = contentOf(argument.h);
            close(argument.h);
        }
        return "file";
    default:
        return "?";
    }
}

} // namespace velloway::test
