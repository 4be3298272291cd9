#include "hosts/linux/desktop/DataControl.h"

#include "data-control-client.h"

#include <QTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace velloway {

namespace {

constexpr const char* plainText = "text/plain";
constexpr const char* utf8Text = "text/plain;charset=utf-8";
/// What text is offered as; the last three are what programs of the X Window System ask for.
constexpr std::array<const char*, 5> offeredTypes{utf8Text, plainText, "UTF8_STRING", "STRING", "TEXT"};
constexpr int answerBound = 5000;
/// Nobody copied a text longer than this.
constexpr std::size_t longestText = std::size_t{256} * 1024 * 1024;

/// Writes a text to a program that pastes it, as fast as that takes it. Deletes itself when that is done.
class Writer : public QObject {
public:
    Writer(int file, std::shared_ptr<const std::string> text, QObject* parent)
        : QObject(parent), notifier_(file, QSocketNotifier::Write), text_(std::move(text)) {
        ::fcntl(file, F_SETFL, ::fcntl(file, F_GETFL) | O_NONBLOCK);
        QObject::connect(&notifier_, &QSocketNotifier::activated, this, [this] { write(); });
    }
    ~Writer() override {
        notifier_.setEnabled(false);
        ::close(static_cast<int>(notifier_.socket()));
    }

private:
    void write() {
        while (written_ < text_->size()) {
            const ssize_t count = ::write(static_cast<int>(notifier_.socket()), text_->data() + written_,
                                          text_->size() - written_);
            if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
                return;
            }
            if (count <= 0) {
                break;
            }
            written_ += static_cast<std::size_t>(count);
        }
        notifier_.setEnabled(false);
        deleteLater();
    }

    QSocketNotifier notifier_;
    std::shared_ptr<const std::string> text_;
    std::size_t written_ = 0;
};

/// Reads a text from the program that owns the clipboard as fast as that writes it. Deletes itself when that is
/// done.
class Reader : public QObject {
public:
    Reader(int file, std::function<void(std::optional<std::string>)> done, QObject* parent)
        : QObject(parent), notifier_(file, QSocketNotifier::Read), done_(std::move(done)) {
        ::fcntl(file, F_SETFL, ::fcntl(file, F_GETFL) | O_NONBLOCK);
        QObject::connect(&notifier_, &QSocketNotifier::activated, this, [this] { read(); });
        silence_.setSingleShot(true);
        QObject::connect(&silence_, &QTimer::timeout, this, [this] { finish(std::nullopt); });
        silence_.start(answerBound);
    }
    ~Reader() override {
        notifier_.setEnabled(false);
        ::close(static_cast<int>(notifier_.socket()));
    }

private:
    void read() {
        std::array<char, 65536> piece{};
        const ssize_t count = ::read(static_cast<int>(notifier_.socket()), piece.data(), piece.size());
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        }
        if (count == 0) {
            return finish(std::move(text_));
        }
        if (count < 0 || text_.size() > longestText) {
            return finish(std::nullopt);
        }
        text_.append(piece.data(), static_cast<std::size_t>(count));
        silence_.start(answerBound);
    }
    void finish(std::optional<std::string> text) {
        notifier_.setEnabled(false);
        silence_.stop();
        deleteLater();
        done_(std::move(text));
    }

    QSocketNotifier notifier_;
    QTimer silence_;
    std::function<void(std::optional<std::string>)> done_;
    std::string text_;
};

/// The later protocol differs from the earlier one in nothing but the names.
const wl_interface& extManager() {
    static const wl_interface renamed = [] {
        wl_interface copy = zwlr_data_control_manager_v1_interface;
        copy.name = "ext_data_control_manager_v1";
        copy.version = 1;
        return copy;
    }();
    return renamed;
}

} // namespace

/// What the compositor calls, by the C interface of the library.
struct DataControl::Listeners {
    static DataControl& self(void* data) { return *static_cast<DataControl*>(data); }

    static constexpr wl_registry_listener registry{
        .global =
            [](void* data, wl_registry* registry, std::uint32_t name, const char* interface,
               std::uint32_t version) {
                DataControl& to = self(data);
                const std::string_view offered = interface;
                if (offered == extManager().name && !to.isManagerExt_) {
                    if (to.manager_ != nullptr) {
                        zwlr_data_control_manager_v1_destroy(to.manager_);
                    }
                    to.manager_ = static_cast<zwlr_data_control_manager_v1*>(
                        wl_registry_bind(registry, name, &extManager(), 1));
                    to.isManagerExt_ = true;
                } else if (offered == zwlr_data_control_manager_v1_interface.name && to.manager_ == nullptr) {
                    to.manager_ = static_cast<zwlr_data_control_manager_v1*>(wl_registry_bind(
                        registry, name, &zwlr_data_control_manager_v1_interface, std::min(version, 2U)));
                } else if (offered == wl_seat_interface.name && to.seat_ == nullptr) {
                    to.seat_ = static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
                }
            },
        .global_remove = [](void*, wl_registry*, std::uint32_t) {}};

    static constexpr zwlr_data_control_device_v1_listener device{
        .data_offer = [](void* data, zwlr_data_control_device_v1*,
                         zwlr_data_control_offer_v1* offer) { self(data).addOffer(offer); },
        .selection = [](void* data, zwlr_data_control_device_v1*,
                        zwlr_data_control_offer_v1* offer) { self(data).select(QClipboard::Clipboard, offer); },
        .finished =
            [](void* data, zwlr_data_control_device_v1* device) {
                for (const auto of : {QClipboard::Clipboard, QClipboard::Selection}) {
                    self(data).select(of, nullptr);
                }
                zwlr_data_control_device_v1_destroy(device);
                self(data).device_ = nullptr;
            },
        .primary_selection =
            [](void* data, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
                self(data).select(QClipboard::Selection, offer);
            }};

    static constexpr zwlr_data_control_offer_v1_listener offer{
        .offer = [](void* data, zwlr_data_control_offer_v1*, const char* type) {
            static_cast<Offer*>(data)->types.insert(type);
        }};

    static constexpr zwlr_data_control_source_v1_listener source{
        .send = [](void* data, zwlr_data_control_source_v1*, const char*,
                   int file) { new Writer(file, self(data).ownText_, &self(data)); },
        .cancelled = [](void* data, zwlr_data_control_source_v1*) { self(data).dropSource(); }};
};

std::unique_ptr<DataControl> DataControl::connect() {
    const char* name = std::getenv("WAYLAND_DISPLAY");
    if (name == nullptr || *name == '\0') {
        return nullptr;
    }
    std::unique_ptr<DataControl> made(new DataControl);
    return made->open() ? std::move(made) : nullptr;
}

bool DataControl::open() {
    display_ = wl_display_connect(nullptr);
    if (display_ == nullptr) {
        return false;
    }
    wl_registry* registry = wl_display_get_registry(display_);
    wl_registry_add_listener(registry, &Listeners::registry, this);
    const bool isAnswered = answered();
    wl_registry_destroy(registry);
    if (!isAnswered || manager_ == nullptr || seat_ == nullptr) {
        return false;
    }
    device_ = zwlr_data_control_manager_v1_get_data_device(manager_, seat_);
    zwlr_data_control_device_v1_add_listener(device_, &Listeners::device, this);
    if (!answered()) {
        return false;
    }
    notifier_ = std::make_unique<QSocketNotifier>(wl_display_get_fd(display_), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, this, [this] { readEvents(); });
    return true;
}

DataControl::~DataControl() {
    notifier_.reset();
    // With the connection goes all that the compositor holds for it; the proxies are freed one by one.
    dropSource();
    for (const auto& offer : offers_) {
        zwlr_data_control_offer_v1_destroy(offer->proxy);
    }
    if (device_ != nullptr) {
        zwlr_data_control_device_v1_destroy(device_);
    }
    if (manager_ != nullptr) {
        zwlr_data_control_manager_v1_destroy(manager_);
    }
    if (seat_ != nullptr) {
        wl_seat_destroy(seat_);
    }
    if (display_ != nullptr) {
        wl_display_disconnect(display_);
    }
}

bool DataControl::isUsable() const {
    return device_ != nullptr && wl_display_get_error(display_) == 0;
}

bool DataControl::knows(QClipboard::Mode of) const {
    constexpr std::uint32_t firstWithSelection = ZWLR_DATA_CONTROL_DEVICE_V1_PRIMARY_SELECTION_SINCE_VERSION;
    return of == QClipboard::Clipboard || isManagerExt_ ||
           zwlr_data_control_manager_v1_get_version(manager_) >= firstWithSelection;
}

/// Everything asked for so far has been done.
bool DataControl::answered() {
    return wl_display_roundtrip(display_) >= 0 && wl_display_get_error(display_) == 0;
}

void DataControl::readEvents() {
    while (wl_display_prepare_read(display_) != 0) {
        wl_display_dispatch_pending(display_);
    }
    if (wl_display_read_events(display_) < 0 || wl_display_dispatch_pending(display_) < 0) {
        notifier_->setEnabled(false);
    }
    wl_display_flush(display_);
}

void DataControl::addOffer(zwlr_data_control_offer_v1* proxy) {
    offers_.push_back(std::make_unique<Offer>(Offer{.proxy = proxy, .types = {}}));
    zwlr_data_control_offer_v1_add_listener(proxy, &Listeners::offer, offers_.back().get());
}

void DataControl::select(QClipboard::Mode of, zwlr_data_control_offer_v1* proxy) {
    Offer*& selected = selected_.at(of);
    if (selected != nullptr && selected->proxy != proxy) {
        zwlr_data_control_offer_v1_destroy(selected->proxy);
        std::erase_if(offers_, [&](const auto& each) { return each.get() == selected; });
    }
    const auto found =
        std::find_if(offers_.begin(), offers_.end(), [&](const auto& each) { return each->proxy == proxy; });
    selected = found != offers_.end() ? found->get() : nullptr;
}

void DataControl::dropSource() {
    if (source_ != nullptr) {
        zwlr_data_control_source_v1_destroy(std::exchange(source_, nullptr));
    }
    ownText_.reset();
}

bool DataControl::clear() {
    if (!isUsable()) {
        return false;
    }
    zwlr_data_control_device_v1_set_selection(device_, nullptr);
    dropSource();
    return answered();
}

bool DataControl::setText(std::string_view text) {
    if (!isUsable()) {
        return false;
    }
    zwlr_data_control_source_v1* const former = std::exchange(source_, nullptr);
    source_ = zwlr_data_control_manager_v1_create_data_source(manager_);
    zwlr_data_control_source_v1_add_listener(source_, &Listeners::source, this);
    for (const char* type : offeredTypes) {
        zwlr_data_control_source_v1_offer(source_, type);
    }
    ownText_ = std::make_shared<const std::string>(text);
    zwlr_data_control_device_v1_set_selection(device_, source_);
    if (former != nullptr) {
        zwlr_data_control_source_v1_destroy(former);
    }
    return answered() && source_ != nullptr;
}

const char* DataControl::textType(const Offer& offer) {
    for (const char* type : {utf8Text, plainText}) {
        if (offer.types.count(type) != 0) {
            return type;
        }
    }
    return nullptr;
}

void DataControl::read(QClipboard::Mode of, std::function<void(std::optional<std::string>)> done) {
    if (!isUsable() || !answered()) {
        return done(std::nullopt);
    }
    if (of == QClipboard::Clipboard && source_ != nullptr) {
        return done(*ownText_);
    }
    const Offer* offer = selected_.at(of);
    const char* type = offer ? textType(*offer) : nullptr;
    const int file = type ? receive(*offer, type) : -1;
    if (file < 0) {
        return done(std::nullopt);
    }
    new Reader(file, std::move(done), this);
}

int DataControl::receive(const Offer& offer, const char* type) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return -1;
    }
    zwlr_data_control_offer_v1_receive(offer.proxy, type, ends[1]);
    const bool isSent = wl_display_flush(display_) >= 0;
    ::close(ends[1]);
    if (!isSent) {
        ::close(ends[0]);
        return -1;
    }
    return ends[0];
}

} // namespace velloway
