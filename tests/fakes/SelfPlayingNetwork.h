#pragma once

#include "fakes/FakeNetwork.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

/// A connection that keeps to the contract of the port by itself, with a far end that the test plays.
class SelfPlayingConnection : public FakeConnection,
                              public std::enable_shared_from_this<SelfPlayingConnection> {
public:
    explicit SelfPlayingConnection(Endpoint endpoint) : FakeConnection(std::move(endpoint)) {
        takesSeries = false;
    }

    /// The far end's side; it outlives the connection.
    struct FarEnd {
        std::deque<std::string> texts;
        bool isEnded = false;
    };
    const std::shared_ptr<FarEnd> farEnd = std::make_shared<FarEnd>();

    ~SelfPlayingConnection() override { farEnd->isEnded = true; }

    void start(DispatchQueue& queue) override {
        FakeConnection::start(queue);
        later([](auto& self) {
            if (self.advance(ConnectionState::setup, ConnectionState::preparing)) {
                self.goOn();
            }
        });
    }
    void cancel() override {
        FakeConnection::cancel();
        laterQueue().async(
            [self = shared_from_this()] { self->end(ConnectionState::cancelled, "Operation canceled"); });
    }
    void receiveMessage(ReceiveCompletion completion) override {
        FakeConnection::receiveMessage(std::move(completion));
        later([](auto& self) { self.goOn(); });
    }
    void send(SharedText text, std::string_view identifier, SendCompletion completion) override {
        FakeConnection::send(std::move(text), identifier, std::move(completion));
        later([](auto& self) { self.goOn(); });
    }
    void send(std::shared_ptr<TextSeries> series, std::uint64_t index, std::string_view identifier,
              SendCompletion completion) override {
        FakeConnection::send(std::move(series), index, identifier, std::move(completion));
        later([](auto& self) { self.goOn(); });
    }

    // What the far end does.
    void shakeHands() { happens(&isShaken_); }
    void sends(std::string message) {
        inbox_.push_back(std::move(message));
        later([](auto& self) { self.goOn(); });
    }
    void goes() { happens(&isLeft_); }

private:
    template <class Step> void later(Step step) {
        laterQueue().async([weak = weak_from_this(), step] {
            if (auto self = weak.lock()) {
                step(*self);
            }
        });
    }
    DispatchQueue& laterQueue() { return queue() ? *queue() : *idleQueue; }
    void happens(bool* fact) {
        *fact = true;
        later([](auto& self) { self.goOn(); });
    }

    bool isOver() const { return state_ == ConnectionState::failed || state_ == ConnectionState::cancelled; }

    bool advance(ConnectionState from, ConnectionState to) {
        if (state_ != from) {
            return false;
        }
        state_ = to;
        tell(to);
        return true;
    }

    void goOn() {
        if (isShaken_ && advance(ConnectionState::preparing, ConnectionState::ready)) {
            return goOn();
        }
        if (isOver()) {
            return refuseWhatWaits("Transport endpoint is not connected");
        }
        if (state_ != ConnectionState::ready) {
            return;
        }
        while (!completions.empty() && hasNextText()) {
            farEnd->texts.push_back(*std::exchange(sharedTexts[nextPlace()], nullptr));
            answerSend(std::nullopt);
        }
        while (isReceiving() && !inbox_.empty()) {
            const std::string message = std::move(inbox_.front());
            inbox_.pop_front();
            deliver(message);
        }
        if (isLeft_ && isReceiving()) {
            end(ConnectionState::failed, "Connection reset by peer");
        }
    }

    std::size_t nextPlace() const { return sent.size() - completions.size(); }

    /// A series is asked for the text when it is not at hand.
    bool hasNextText() {
        if (sharedTexts[nextPlace()] || isAsking_) {
            return !isAsking_;
        }
        const Untaken next = untaken.front();
        if (const SharedText text = next.series->atHand(next.index)) {
            untaken.pop_front();
            take(next, text);
            return true;
        }
        isAsking_ = true;
        next.series->make(next.index, [weak = weak_from_this()](const SharedText& text, const auto& error) {
            if (auto self = weak.lock()) {
                self->wasMade(text, error);
            }
        });
        return false;
    }

    void wasMade(const SharedText& text, const std::optional<NetworkError>& error) {
        isAsking_ = false;
        if (isOver()) {
            return;
        }
        const Untaken made = untaken.front();
        untaken.pop_front();
        if (text) {
            take(made, text);
        } else {
            answerSend(error);
        }
        goOn();
    }

    void end(ConnectionState state, const char* text) {
        if (isOver()) {
            return;
        }
        state_ = state;
        farEnd->isEnded = true;
        refuseWhatWaits(text);
        tell(state, state == ConnectionState::failed ? std::optional(NetworkError{text, text}) : std::nullopt);
        setStateHandler(nullptr);
    }

    void refuseWhatWaits(const char* text) {
        if (isReceiving()) {
            deliver({.error = NetworkError{text, text}});
        }
        untaken.clear();
        while (!completions.empty()) {
            answerSend(NetworkError{text, text});
        }
    }

    void answerSend(std::optional<NetworkError> error) {
        const SendCompletion completion = std::move(completions.front());
        completions.pop_front();
        if (completion) {
            completion(error);
        }
    }

    void tell(ConnectionState state, const std::optional<NetworkError>& error = {}) {
        if (hasStateHandler()) {
            report(state, error);
        }
    }

public:
    /// For a connection that was never started.
    DispatchQueue* idleQueue = nullptr;

private:
    ConnectionState state_ = ConnectionState::setup;
    bool isShaken_ = false;
    bool isLeft_ = false;
    bool isAsking_ = false;
    std::deque<std::string> inbox_;
};

/// Ports that are taken, for the listeners of one test.
using TakenPorts = std::set<std::uint16_t>;

class SelfPlayingListener : public FakeListener, public std::enable_shared_from_this<SelfPlayingListener> {
public:
    SelfPlayingListener(const ListenerParameters& made, std::shared_ptr<TakenPorts> taken)
        : FakeListener(made, nullptr), taken_(std::move(taken)) {}
    ~SelfPlayingListener() override { release(); }

    void setStateHandler(StateHandler handler) override {
        hasHandler_ = static_cast<bool>(handler);
        FakeListener::setStateHandler(std::move(handler));
    }
    void start(DispatchQueue& queue) override {
        FakeListener::start(queue);
        queue.async([weak = weak_from_this()] {
            if (auto self = weak.lock()) {
                self->listen();
            }
        });
    }
    void cancel() override {
        FakeListener::cancel();
        queue()->async([self = shared_from_this()] {
            if (!std::exchange(self->isOver_, true)) {
                self->release();
                self->tell(ListenerState::cancelled);
            }
        });
    }

    bool isListening() const { return holdsPort_; }

private:
    void listen() {
        if (isOver_) {
            return;
        }
        if (!taken_->insert(parameters.port).second) {
            tell(ListenerState::failed, NetworkError{"Address already in use", "system:98"});
            return;
        }
        holdsPort_ = true;
        tell(ListenerState::ready);
    }
    void release() {
        if (std::exchange(holdsPort_, false)) {
            taken_->erase(parameters.port);
        }
    }
    void tell(ListenerState state, const std::optional<NetworkError>& error = {}) {
        if (hasHandler_) {
            report(state, error);
        }
    }

    std::shared_ptr<TakenPorts> taken_;
    bool hasHandler_ = false;
    bool holdsPort_ = false;
    bool isOver_ = false;
};

/// A network whose listeners and connections act without being told to, as the ones of a host do.
class SelfPlayingNetwork : public Network {
public:
    bool acceptsPort(std::uint16_t) const override { return true; }
    std::shared_ptr<NetworkListener> makeListener(const ListenerParameters& parameters,
                                                  NetworkError&) override {
        return std::make_shared<SelfPlayingListener>(parameters, taken);
    }

    const std::shared_ptr<TakenPorts> taken = std::make_shared<TakenPorts>();
};

} // namespace velloway::test
