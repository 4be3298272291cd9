#include "contract/NetworkContract.h"
#include "hosts/mac/FakeDispatch.h"
#include "hosts/mac/FakeNetworkFramework.h"
#include "hosts/mac/FakeObject.h"
#include "hosts/mac/MacDispatchQueue.h"
#include "hosts/mac/MacNetwork.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

namespace velloway::test {
namespace {

class MacPeer : public Peer {
public:
    explicit MacPeer(std::shared_ptr<FakePhone> phone) : phone_(std::move(phone)) {}

    bool shakeHands() override {
        phone_->shakeHands();
        fakeDispatch::runAll();
        return !phone_->farEnd->isEnded;
    }
    void sendText(const std::string& text) override {
        phone_->sends(text);
        fakeDispatch::runAll();
    }
    void sendBinary(const std::string& bytes) override { sendText(bytes); }
    std::optional<std::string> nextText() override {
        fakeDispatch::runAll();
        if (phone_->farEnd->frames.empty()) {
            return std::nullopt;
        }
        std::string text = std::move(phone_->farEnd->frames.front().text);
        phone_->farEnd->frames.pop_front();
        return text;
    }
    void closeProperly() override { end(ENOTCONN); }
    void vanish() override { end(ECONNRESET); }
    bool seesEnd() override {
        fakeDispatch::runAll();
        return phone_->farEnd->isEnded;
    }

private:
    void end(int posixCode) {
        phone_->fails(posixCode);
        fakeDispatch::runAll();
    }

    std::shared_ptr<FakePhone> phone_;
};

/// The adapters over a framework that records, with messages that come in several regions.
class MacNetworkWorld : public NetworkWorld {
public:
    MacNetworkWorld() {
        fakeNetworkFramework = {};
        fakeNetworkFramework.regions = 3;
    }
    ~MacNetworkWorld() override {
        fakeDispatch::runAll();
        queue_.reset();
        EXPECT_EQ(FakeObject::alive, aliveBefore_);
    }

    Network& network() override { return network_; }
    DispatchQueue& queue() override { return *queue_; }
    bool runUntil(const std::function<bool()>& condition) override {
        fakeDispatch::runAll();
        return condition();
    }
    std::uint16_t freePort() override { return 9000; }
    std::unique_ptr<Peer> dial(NetworkListener&, std::uint16_t port) override {
        auto phone = dialFake(port);
        fakeDispatch::runAll();
        return std::make_unique<MacPeer>(std::move(phone));
    }
    std::string hostOfPeers() const override { return "10.0.0.7"; }

private:
    const int aliveBefore_ = FakeObject::alive;
    MacNetwork network_{[] { return std::make_shared<int>(); }};
    std::unique_ptr<MacDispatchQueue> queue_ = std::make_unique<MacDispatchQueue>("contract");
};

std::unique_ptr<NetworkWorld> makeMacNetworkWorld() {
    return std::make_unique<MacNetworkWorld>();
}

} // namespace

std::vector<NetworkImplementation> networkImplementations() {
    return {{"Mac", makeMacNetworkWorld}};
}

} // namespace velloway::test
