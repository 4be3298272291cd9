#include "contract/NetworkContract.h"
#include "hosts/linux/network/LinuxListener.h"
#include "hosts/linux/network/LinuxNetwork.h"
#include "hosts/network/RawPhone.h"

#include <chrono>
#include <thread>

namespace velloway::test {
namespace {

class LinuxPeer : public Peer {
public:
    explicit LinuxPeer(std::uint16_t port) : phone_(port) {}

    bool shakeHands() override { return phone_.shakeHands(); }
    void sendText(const std::string& text) override { phone_.sendText(text); }
    void sendBinary(const std::string& bytes) override { phone_.write(frame(bytes, {.opcode = 2})); }
    std::optional<std::string> nextText() override {
        const auto next = phone_.readFrame();
        return next && next->opcode == 1 ? std::optional(next->payload) : std::nullopt;
    }
    void closeProperly() override { phone_.write(frame("\x03\xE8", {.opcode = 8})); }
    void vanish() override { phone_.reset(); }
    bool seesEnd() override { return phone_.waitForEnd(); }

private:
    RawPhone phone_;
};

class LinuxNetworkWorld : public NetworkWorld {
public:
    Network& network() override { return network_; }
    DispatchQueue& queue() override { return queue_; }
    bool runUntil(const std::function<bool()>& condition) override {
        const auto until = std::chrono::steady_clock::now() + RawPhone::timeout;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > until) {
                return false;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    std::uint16_t freePort() override {
        NetworkError error;
        const auto probe = network_.makeListener({}, error);
        probe->start(queue_);
        auto& listener = static_cast<LinuxListener&>(*probe);
        runUntil([&] { return listener.boundPort() != 0; });
        return listener.boundPort();
    }
    std::unique_ptr<Peer> dial(NetworkListener&, std::uint16_t port) override {
        return std::make_unique<LinuxPeer>(port);
    }
    std::string hostOfPeers() const override { return "127.0.0.1"; }

private:
    AsioQueue queue_{"ws.server"};
    LinuxNetwork network_{queue_, {.closing = std::chrono::milliseconds(200)}};
};

} // namespace

std::unique_ptr<NetworkWorld> makeLinuxNetworkWorld() {
    return std::make_unique<LinuxNetworkWorld>();
}

} // namespace velloway::test
