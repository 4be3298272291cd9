#pragma once

#include <QClipboard>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

struct xcb_connection_t;
struct xcb_property_notify_event_t;
struct xcb_selection_notify_event_t;

namespace velloway {

/// Asks the owner of the X server's clipboard, or of the text selected in a window, for its text, over a
/// connection of its own, and goes on with the event loop until the answer comes. Main thread.
class SelectionReader : public QObject {
public:
    using Done = std::function<void(std::optional<std::string> text)>;

    /// How many names the server is asked about, once for the life of the connection.
    static constexpr std::size_t atomCount = 8;

    /// Null where there is no X server.
    static std::unique_ptr<SelectionReader> connect();
    ~SelectionReader() override;

    /// Calls `done` once, never inside the call: absent when there is no plain text, or when the owner is
    /// silent for 5 seconds. One question at a time.
    void read(QClipboard::Mode of, Done done);

private:
    explicit SelectionReader(xcb_connection_t* connection);
    void readAtoms();
    void convert(std::uint32_t type);
    void handleEvents();
    void handle(const xcb_selection_notify_event_t& event);
    void handle(const xcb_property_notify_event_t& event);
    void chooseType();
    void takeText();
    bool takePiece(std::uint32_t& type, std::string& piece);
    void finish(std::optional<std::string> text);

    xcb_connection_t* connection_;
    std::array<std::uint32_t, atomCount> atoms_{};
    std::unique_ptr<QSocketNotifier> notifier_;
    QTimer silence_;
    Done done_;
    /// One for each question, so that a late answer to an earlier one reaches nobody.
    std::uint32_t window_ = 0;
    std::uint32_t selection_ = 0;
    std::uint32_t asked_ = 0;
    bool isInPieces_ = false;
    std::string text_;
};

} // namespace velloway
