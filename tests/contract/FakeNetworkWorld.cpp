#include "contract/NetworkContract.h"
#include "fakes/FakeDispatchQueue.h"
#include "fakes/SelfPlayingNetwork.h"

#include <chrono>

namespace velloway::test {
namespace {

class FakePeer : public Peer {
public:
    FakePeer(FakeDispatchQueue& queue, const std::shared_ptr<SelfPlayingConnection>& connection)
        : queue_(queue), connection_(connection), farEnd_(connection->farEnd) {}

    bool shakeHands() override {
        act([](SelfPlayingConnection& connection) { connection.shakeHands(); });
        return !farEnd_->isEnded;
    }
    void sendText(const std::string& text) override {
        act([&](SelfPlayingConnection& connection) { connection.sends(text); });
    }
    void sendBinary(const std::string& bytes) override { sendText(bytes); }
    std::optional<std::string> nextText() override {
        queue_.runAll();
        if (farEnd_->texts.empty()) {
            return {};
        }
        std::string text = std::move(farEnd_->texts.front());
        farEnd_->texts.pop_front();
        return text;
    }
    void closeProperly() override { vanish(); }
    void vanish() override {
        act([](SelfPlayingConnection& connection) { connection.goes(); });
    }
    bool seesEnd() override {
        queue_.runAll();
        return farEnd_->isEnded;
    }

private:
    template <class Act> void act(Act what) {
        if (auto connection = connection_.lock()) {
            what(*connection);
        }
        queue_.runAll();
    }

    FakeDispatchQueue& queue_;
    std::weak_ptr<SelfPlayingConnection> connection_;
    std::shared_ptr<SelfPlayingConnection::FarEnd> farEnd_;
};

class FakeNetworkWorld : public NetworkWorld {
public:
    Network& network() override { return network_; }
    DispatchQueue& queue() override { return queue_; }
    bool runUntil(const std::function<bool()>& condition) override {
        queue_.runAll();
        return condition();
    }
    std::uint16_t freePort() override { return nextPort_++; }
    std::unique_ptr<Peer> dial(NetworkListener& listener, std::uint16_t) override {
        auto& fake = static_cast<SelfPlayingListener&>(listener);
        auto connection = std::make_shared<SelfPlayingConnection>(Endpoint{"10.0.0.7", "10.0.0.7:50000"});
        connection->idleQueue = &queue_;
        auto peer = std::make_unique<FakePeer>(queue_, connection);
        queue_.async([&fake, connection]() mutable { fake.connect(std::move(connection)); });
        queue_.runAll();
        return peer;
    }
    std::string hostOfPeers() const override { return "10.0.0.7"; }

private:
    FakeDispatchQueue queue_;
    SelfPlayingNetwork network_;
    std::uint16_t nextPort_ = 9000;
};

} // namespace

std::unique_ptr<NetworkWorld> makeFakeNetworkWorld() {
    return std::make_unique<FakeNetworkWorld>();
}

} // namespace velloway::test
