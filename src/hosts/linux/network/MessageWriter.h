#pragma once

#include "hosts/linux/network/PhoneSocket.h"
#include "platform/Network.h"

#include <boost/asio/buffer.hpp>
#include <boost/system/error_code.hpp>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// The sending half of a connection: texts leave in the order of the calls, one frame each. Control frames go
/// between them. The text of a series is held only for as long as the socket takes bytes of it. On the queue.
class MessageWriter {
public:
    using Completion = NetworkConnection::SendCompletion;
    using Failed = std::function<void(const boost::system::error_code& error)>;

    /// What was not sent.
    struct Unsent {
        /// Null for a series, and when the text was refused because too much waits.
        SharedText text;
        Completion completion;
        std::shared_ptr<TextSeries> series;
        /// Of the series, so many texts from `first` on; the completion is called for each.
        std::uint64_t first = 0;
        std::uint64_t count = 1;
    };

    /// `owner` returns what must stay alive while something is written. Completions are not called once
    /// `isAbandoned`.
    MessageWriter(PhoneSocket& socket, std::size_t queuedBytes, std::function<std::shared_ptr<void>()> owner,
                  const std::atomic<bool>& isAbandoned, Failed failed);

    /// The handshake has succeeded: texts may leave.
    void start();
    /// Returns false when more waits than may; what waits is kept, this text and all later ones are not.
    bool send(SharedText text, Completion completion);
    bool send(std::shared_ptr<TextSeries> series, std::uint64_t index, Completion completion);
    /// `done` is called once, also when the socket fails.
    void pong(std::string_view payload, std::function<void()> done);
    /// Sends no more texts.
    std::deque<Unsent> stop();
    /// The last frame, after `stop`; without a number when `code` is 0. `done` as for `pong`.
    void close(std::uint16_t code, std::function<void()> done);

private:
    struct Control {
        std::string frame;
        std::function<void()> done;
    };
    /// More would be cut into several system calls.
    static constexpr std::size_t mostTextsPerWrite = 8;

    /// The frame of a series of which a part may have left.
    struct Frame {
        std::shared_ptr<TextSeries> series;
        std::uint64_t index = 0;
        std::array<char, 10> header{};
        std::size_t headerSize = 0;
        std::size_t size = 0;
        std::size_t written = 0;
    };

    void addControl(std::uint8_t opcode, std::string_view payload, std::function<void()> done);
    void writeNext();
    void gatherTexts();
    void didWrite(const boost::system::error_code& error, bool wasControl);
    void writeFailed(const boost::system::error_code& error);
    void completeTexts(std::size_t count);

    void startFrame();
    void startFrame(const SharedText& text);
    void goOnWithFrame();
    void writeFrame(const SharedText& text);
    void frameHasLeft();
    void ask(TextSeries& series, std::uint64_t index);
    void wasMade(const SharedText& text, const std::optional<NetworkError>& error);
    void completeFirstOfSeries(const std::optional<NetworkError>& error);

    PhoneSocket& socket_;
    const std::size_t maxQueuedBytes_;
    std::function<std::shared_ptr<void>()> owner_;
    const std::atomic<bool>& isAbandoned_;
    Failed failed_;
    std::deque<Unsent> outgoing_;
    std::deque<Control> controls_;
    std::size_t queuedBytes_ = 0;
    bool isStarted_ = false;
    bool isWriting_ = false;
    bool isOverflowing_ = false;
    /// Until a series has made the text that it was asked for.
    bool isAsking_ = false;

    // What is being written.
    std::vector<SharedText> texts_;
    std::array<std::array<char, 10>, mostTextsPerWrite> headers_{};
    std::vector<boost::asio::const_buffer> buffers_;
    Frame frame_;
};

} // namespace velloway
