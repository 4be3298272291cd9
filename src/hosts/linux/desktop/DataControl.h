#pragma once

#include <QClipboard>
#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

struct wl_display;
struct wl_seat;
struct zwlr_data_control_device_v1;
struct zwlr_data_control_manager_v1;
struct zwlr_data_control_offer_v1;
struct zwlr_data_control_source_v1;

namespace velloway {

/// The clipboard of a Wayland compositor that lets programs use it without a window in front, and the text
/// selected in a window, over a connection of its own. Main thread, beside the event loop, which hands out the
/// text that was set.
class DataControl : public QObject {
public:
    /// Null where there is no Wayland compositor or it has no such protocol. Waits for the compositor's
    /// answers.
    static std::unique_ptr<DataControl> connect();
    ~DataControl() override;

    /// False once the compositor or its seat has gone.
    bool isUsable() const;
    /// The earlier form of the protocol knows nothing of the text selected in a window.
    bool knows(QClipboard::Mode of) const;
    bool clear();
    /// False when the compositor did not make it the text on the clipboard.
    bool setText(std::string_view text);
    /// Asks the program that owns the clipboard, which has 5 seconds for each piece, and calls `done` once,
    /// inside the call or when the owner has answered; absent when there is no plain text or the owner does not
    /// hand it over in full. One that is open when this ends is dropped.
    void read(QClipboard::Mode of, std::function<void(std::optional<std::string>)> done);

private:
    struct Offer {
        zwlr_data_control_offer_v1* proxy;
        std::set<std::string> types;
    };
    struct Listeners;

    DataControl() = default;
    bool open();
    bool answered();
    void readEvents();
    void addOffer(zwlr_data_control_offer_v1* proxy);
    void select(QClipboard::Mode of, zwlr_data_control_offer_v1* proxy);
    void dropSource();
    /// The best type of text among those offered, or null.
    static const char* textType(const Offer& offer);
    /// The end to read from, or -1.
    int receive(const Offer& offer, const char* type);

    wl_display* display_ = nullptr;
    wl_seat* seat_ = nullptr;
    zwlr_data_control_manager_v1* manager_ = nullptr;
    zwlr_data_control_device_v1* device_ = nullptr;
    zwlr_data_control_source_v1* source_ = nullptr;
    bool isManagerExt_ = false;
    /// What `source_` hands out.
    std::shared_ptr<const std::string> ownText_;
    /// Announced by the compositor, and those of `selected_` among them.
    std::vector<std::unique_ptr<Offer>> offers_;
    /// By mode: what lies on the clipboard, and what is selected in a window.
    std::array<Offer*, 2> selected_{};
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace velloway
