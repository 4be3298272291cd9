#include "hosts/linux/desktop/SelectionReader.h"

#include "hosts/linux/desktop/ClipboardText.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>
#include <xcb/xcb.h>

namespace velloway {

namespace {

constexpr std::chrono::seconds answerBound{5};
/// Nobody copied a text longer than this.
constexpr std::size_t longestText = std::size_t{256} * 1024 * 1024;

template <class Reply> using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

template <class Reply> ReplyPointer<Reply> owned(Reply* reply) {
    return {reply, &std::free};
}

enum AtomName : std::size_t {
    targets,
    clipboard,
    answer,
    inPieces,
    utf8String,
    utf8Text,
    plainText,
    latin1String
};

constexpr std::array<std::string_view, SelectionReader::atomCount> atomNames{
    "TARGETS",    "CLIPBOARD", "VELLOWAY_CLIPBOARD", "INCR", "UTF8_STRING", "text/plain;charset=utf-8",
    "text/plain", "STRING"};

} // namespace

std::unique_ptr<SelectionReader> SelectionReader::connect() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::unique_ptr<SelectionReader>(new SelectionReader(connection));
}

SelectionReader::SelectionReader(xcb_connection_t* connection)
    : connection_(connection),
      notifier_(std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read)) {
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, this, [this] { handleEvents(); });
    readAtoms();
    silence_.setSingleShot(true);
    silence_.setInterval(answerBound);
    QObject::connect(&silence_, &QTimer::timeout, this, [this] {
        // It stays: an owner that comes back to an earlier question must find it, or the server's error would
        // end it.
        window_ = 0;
        finish(std::nullopt);
    });
}

SelectionReader::~SelectionReader() {
    notifier_.reset();
    xcb_disconnect(connection_);
}

void SelectionReader::readAtoms() {
    std::array<xcb_intern_atom_cookie_t, atomCount> asked{};
    std::transform(atomNames.begin(), atomNames.end(), asked.begin(), [this](std::string_view name) {
        return xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    });
    std::transform(asked.begin(), asked.end(), atoms_.begin(), [this](xcb_intern_atom_cookie_t each) {
        const auto reply = owned(xcb_intern_atom_reply(connection_, each, nullptr));
        return reply ? reply->atom : static_cast<std::uint32_t>(XCB_ATOM_NONE);
    });
}

void SelectionReader::read(QClipboard::Mode of, Done done) {
    done_ = std::move(done);
    selection_ = of == QClipboard::Selection ? static_cast<std::uint32_t>(XCB_ATOM_PRIMARY) : atoms_[clipboard];
    silence_.start();
    if (xcb_connection_has_error(connection_)) {
        silence_.start(0);
        return;
    }
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    window_ = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    convert(atoms_[targets]);
    // What came while the request was being written does not wake the event loop.
    QMetaObject::invokeMethod(
        this, [this] { handleEvents(); }, Qt::QueuedConnection);
}

void SelectionReader::convert(std::uint32_t type) {
    asked_ = type;
    xcb_convert_selection(connection_, window_, selection_, type, atoms_[answer], XCB_CURRENT_TIME);
    xcb_flush(connection_);
}

void SelectionReader::handleEvents() {
    while (const auto event = owned(xcb_poll_for_event(connection_))) {
        switch (event->response_type & 0x7fU) {
        case XCB_SELECTION_NOTIFY:
            handle(*reinterpret_cast<const xcb_selection_notify_event_t*>(event.get()));
            break;
        case XCB_PROPERTY_NOTIFY:
            handle(*reinterpret_cast<const xcb_property_notify_event_t*>(event.get()));
            break;
        default:
            break;
        }
    }
    if (xcb_connection_has_error(connection_)) {
        notifier_->setEnabled(false);
        finish(std::nullopt);
    }
}

void SelectionReader::handle(const xcb_selection_notify_event_t& event) {
    if (!done_ || event.requestor != window_ || event.target != asked_) {
        return;
    }
    if (event.property == XCB_ATOM_NONE) {
        finish(std::nullopt);
    } else if (asked_ == atoms_[targets]) {
        chooseType();
    } else {
        takeText();
    }
}

void SelectionReader::handle(const xcb_property_notify_event_t& event) {
    if (!done_ || !isInPieces_ || event.window != window_ || event.state != XCB_PROPERTY_NEW_VALUE) {
        return;
    }
    std::uint32_t type = 0;
    std::string piece;
    if (!takePiece(type, piece) || text_.size() + piece.size() > longestText) {
        finish(std::nullopt);
    } else if (piece.empty()) {
        finish(std::move(text_));
    } else {
        text_ += piece;
        silence_.start();
    }
}

void SelectionReader::chooseType() {
    std::uint32_t type = 0;
    std::string bytes;
    std::vector<xcb_atom_t> offered;
    if (takePiece(type, bytes)) {
        offered.resize(bytes.size() / sizeof(xcb_atom_t));
        std::memcpy(offered.data(), bytes.data(), offered.size() * sizeof(xcb_atom_t));
    }
    for (const AtomName name : {utf8String, utf8Text, plainText, latin1String}) {
        const std::uint32_t wanted = atoms_[name];
        if (std::find(offered.begin(), offered.end(), wanted) != offered.end()) {
            silence_.start();
            convert(wanted);
            return;
        }
    }
    finish(std::nullopt);
}

void SelectionReader::takeText() {
    std::uint32_t type = 0;
    std::string text;
    if (!takePiece(type, text)) {
        finish(std::nullopt);
    } else if (type == atoms_[inPieces]) {
        // The owner sends it in pieces, each after the last one was taken away.
        isInPieces_ = true;
        silence_.start();
    } else {
        finish(std::move(text));
    }
}

bool SelectionReader::takePiece(std::uint32_t& type, std::string& piece) {
    const auto reply = owned(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 1, window_, atoms_[answer], XCB_GET_PROPERTY_TYPE_ANY, 0,
                         static_cast<std::uint32_t>(longestText / 4)),
        nullptr));
    if (!reply) {
        return false;
    }
    type = reply->type;
    const auto size = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    piece.assign(static_cast<const char*>(xcb_get_property_value(reply.get())), size);
    return true;
}

void SelectionReader::finish(std::optional<std::string> text) {
    if (!done_) {
        return;
    }
    if (text) {
        const auto encoding =
            asked_ == atoms_[latin1String] ? QStringConverter::Latin1 : QStringConverter::Utf8;
        text = clipboardText(*text, encoding).toStdString();
    }
    silence_.stop();
    if (window_ != 0) {
        xcb_destroy_window(connection_, std::exchange(window_, 0));
        xcb_flush(connection_);
    }
    isInPieces_ = false;
    text_.clear();
    // May ask the next question.
    std::exchange(done_, nullptr)(std::move(text));
}

} // namespace velloway
