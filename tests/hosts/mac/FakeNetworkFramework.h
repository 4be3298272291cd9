#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway::test {

/// What the framework was asked to do, and what it should do next.
struct FakeNetworkFramework {
    std::vector<std::string> calls;
    /// Hears each call as it comes.
    std::function<void(const std::string&)> onCall;
    bool refusesListeners = false;
    /// How the far ends of new connections show themselves.
    enum class EndpointKind { address, host, service } endpointKind = EndpointKind::address;
    std::string address = "10.0.0.7";
    /// In how many regions the bytes of a message come.
    std::size_t regions = 1;
};
extern FakeNetworkFramework fakeNetworkFramework;

/// The phone's end of one connection. Its operations take effect when the queue runs.
class FakePhone {
public:
    struct Frame {
        std::string text;
        std::string identifier;
        int opcode = 0;
        bool isComplete = false;
        /// Where the bytes lay when they were handed over.
        const char* at = nullptr;
    };

    /// What has reached the phone.
    struct FarEnd {
        std::deque<Frame> frames;
        bool isEnded = false;
    };

    virtual ~FakePhone() = default;
    virtual void shakeHands() = 0;
    virtual void sends(const std::string& bytes, bool isWholeMessage = true, bool hasMetadata = true) = 0;
    /// The connection fails, and what waits for it with it.
    virtual void fails(int posixCode) = 0;
    /// A receive fails, and the framework reports no state after it.
    virtual void failsToReceive(int posixCode) = 0;
    /// Closes the WebSocket in the regular way: a receive brings the closing frame, and the framework reports
    /// no state after it. Without a code the frame is empty.
    virtual void closes(std::optional<int> code, const std::string& reason) = 0;
    /// Closes the stream without a closing frame; a receive brings its end, and the framework reports no state
    /// after it.
    virtual void endsStream() = 0;

    const std::shared_ptr<FarEnd> farEnd = std::make_shared<FarEnd>();
};

/// Connects to what listens on `port`; null when nothing does.
std::shared_ptr<FakePhone> dialFake(std::uint16_t port);

} // namespace velloway::test
