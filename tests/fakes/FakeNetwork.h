#pragma once

#include "fakes/Journal.h"
#include "platform/Network.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

/// A connection that the test plays: it reports states and delivers blocks when told to, on the queue that it
/// was started on.
class FakeConnection : public NetworkConnection {
public:
    explicit FakeConnection(Endpoint endpoint, Journal* journal = nullptr)
        : endpoint_(std::move(endpoint)), journal_(journal) {}

    void setStateHandler(StateHandler handler) override { stateHandler_ = std::move(handler); }
    void start(DispatchQueue& queue) override {
        queue_ = &queue;
        wasWatchedAtStart = hasStateHandler();
    }
    void cancel() override {
        note("cancel");
        isCancelled = true;
    }
    Endpoint endpoint() const override { return endpoint_; }
    void receiveMessage(ReceiveCompletion completion) override {
        ++receivesArmed;
        completion_ = std::move(completion);
    }
    void send(SharedText text, std::string_view identifier, SendCompletion completion) override {
        note("send");
        if (onSend) {
            onSend();
        }
        sent.push_back({*text, std::string(identifier)});
        sharedTexts.push_back(text);
        completions.push_back(std::move(completion));
    }
    /// Takes the text at once, or later when it has to be made first, unless `takesSeries` is switched off.
    void send(std::shared_ptr<TextSeries> series, std::uint64_t index, std::string_view identifier,
              SendCompletion completion) override {
        note("send");
        if (onSend) {
            onSend();
        }
        untaken.push_back({sent.size(), sharedTexts.size(), std::move(series), index});
        sent.push_back({"", std::string(identifier)});
        sharedTexts.push_back(nullptr);
        completions.push_back(std::move(completion));
        if (takesSeries) {
            takeNext();
        }
    }

    // What the test does.
    /// Takes the next text of a series that waits, as a connection does when its far end reads again.
    void takeNext() {
        const Untaken next = untaken.front();
        untaken.pop_front();
        if (SharedText text = next.series->atHand(next.index)) {
            take(next, text);
        } else {
            next.series->make(next.index, [this, next](const SharedText& made, const auto& error) {
                take(next, made);
                seriesError = error;
            });
        }
    }
    void report(ConnectionState state, std::optional<NetworkError> error = {}) {
        auto handler = stateHandler_;
        if (state == ConnectionState::failed || state == ConnectionState::cancelled) {
            stateHandler_ = nullptr;
        }
        if (handler) {
            handler(state, error);
        }
        if (state == ConnectionState::cancelled) {
            completion_ = nullptr; // It holds this connection.
        }
    }
    void deliver(ReceivedContent content) {
        auto completion = std::exchange(completion_, nullptr);
        completion(content);
    }
    /// One whole text message.
    void deliver(std::string_view message) {
        deliver({.bytes = message, .hasWebSocketMetadata = true, .isComplete = true});
    }

    bool isStarted() const { return queue_ != nullptr; }
    /// A state that comes before there is a handler is lost.
    bool wasWatchedAtStart = false;
    DispatchQueue* queue() const { return queue_; }
    bool hasStateHandler() const { return static_cast<bool>(stateHandler_); }
    bool isReceiving() const { return static_cast<bool>(completion_); }

    struct Sent {
        std::string text;
        std::string identifier;
        bool operator==(const Sent&) const = default;
    };
    std::vector<Sent> sent;
    /// What was handed over, to see that one text serves all connections.
    std::vector<SharedText> sharedTexts;
    std::deque<SendCompletion> completions;
    int receivesArmed = 0;
    std::function<void()> onSend;
    bool isCancelled = false;

    struct Untaken {
        /// Where it belongs in `sent` and in `sharedTexts`.
        std::size_t place = 0;
        std::size_t sharedPlace = 0;
        std::shared_ptr<TextSeries> series;
        std::uint64_t index = 0;
    };
    bool takesSeries = true;
    std::deque<Untaken> untaken;
    /// Why the last text of a series that had to be made came without one.
    std::optional<NetworkError> seriesError;

protected:
    void take(const Untaken& taken, const SharedText& text) {
        sharedTexts[taken.sharedPlace] = text;
        sent[taken.place].text = text ? *text : "";
    }

private:
    void note(const char* what) {
        if (journal_) {
            journal_->note(endpoint_.description + " " + what);
        }
    }

    Endpoint endpoint_;
    Journal* journal_;
    DispatchQueue* queue_ = nullptr;
    StateHandler stateHandler_;
    ReceiveCompletion completion_;
};

class FakeListener : public NetworkListener {
public:
    FakeListener(ListenerParameters made, Journal* journal) : parameters(made), journal_(journal) {}

    void setStateHandler(StateHandler handler) override { stateHandler_ = std::move(handler); }
    void setNewConnectionHandler(NewConnectionHandler handler) override { newConnection_ = std::move(handler); }
    void start(DispatchQueue& queue) override {
        queue_ = &queue;
        wasWatchedAtStart = stateHandler_ && newConnection_;
        note("listener start");
    }
    void cancel() override {
        isCancelled = true;
        note("listener cancel");
    }

    void report(ListenerState state, std::optional<NetworkError> error = {}) {
        auto handler = stateHandler_;
        handler(state, error);
    }
    void connect(std::shared_ptr<NetworkConnection> connection) { newConnection_(std::move(connection)); }

    bool isStarted() const { return queue_ != nullptr; }
    /// What comes before there are both handlers is lost.
    bool wasWatchedAtStart = false;
    DispatchQueue* queue() const { return queue_; }

    ListenerParameters parameters;
    bool isCancelled = false;

private:
    void note(const char* what) {
        if (journal_) {
            journal_->note(what);
        }
    }

    Journal* journal_;
    DispatchQueue* queue_ = nullptr;
    StateHandler stateHandler_;
    NewConnectionHandler newConnection_;
};

class FakeNetwork : public Network {
public:
    explicit FakeNetwork(Journal* journal = nullptr) : journal_(journal) {}

    bool acceptsPort(std::uint16_t) const override { return acceptsPorts; }
    std::shared_ptr<NetworkListener> makeListener(const ListenerParameters& parameters,
                                                  NetworkError& error) override {
        if (journal_) {
            journal_->note("listener make " + std::to_string(parameters.port));
        }
        if (makeError) {
            error = *makeError;
            return nullptr;
        }
        listeners.push_back(std::make_shared<FakeListener>(parameters, journal_));
        return listeners.back();
    }

    FakeListener& listener() { return *listeners.back(); }

    bool acceptsPorts = true;
    std::optional<NetworkError> makeError;
    std::vector<std::shared_ptr<FakeListener>> listeners;

private:
    Journal* journal_;
};

} // namespace velloway::test
