#pragma once

#include "hosts/linux/network/LinuxListener.h"
#include "hosts/linux/network/LinuxNetwork.h"
#include "hosts/network/RawPhone.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace velloway::test {

inline bool waitUntil(const std::function<bool()>& condition,
                      std::chrono::milliseconds limit = RawPhone::timeout) {
    const auto until = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > until) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// The real network with a server on it that answers every message with itself.
class EchoHost {
public:
    explicit EchoHost(const LinuxNetworkLimits& limits = {}, QueueTurns turns = {})
        : network_(queue, limits), queue("ws.server", std::move(turns)) {
        NetworkError error;
        listener_ = network_.makeListener({.allowLocalEndpointReuse = true, .autoReplyPing = true}, error);
        listener_->setStateHandler([this](ListenerState state, const auto&) {
            if (state == ListenerState::failed) {
                ++listenerFailures;
            }
        });
        listener_->setNewConnectionHandler([this](std::shared_ptr<NetworkConnection> connection) {
            ++accepted;
            accept(std::move(connection));
        });
        listener_->start(queue);
        auto& listener = static_cast<LinuxListener&>(*listener_);
        EXPECT_TRUE(waitUntil([&] { return listener.boundPort() != 0; }));
        port = listener.boundPort();
    }

    /// How the last connection that failed did so.
    std::string lastFailure() {
        std::lock_guard lock(mutex_);
        return lastFailure_;
    }

    /// Sends to the connection that became ready last.
    void sendToLatest(const SharedText& text, int times = 1) {
        perform([&] {
            const auto connection = latest_.lock();
            for (int time = 0; connection && time < times; ++time) {
                connection->send(text, "send", [this](const auto& error) { ++(error ? unsent : sent); });
            }
        });
    }

    /// Sends texts of the series, beginning with its first, to the connection that became ready last.
    void sendToLatest(const std::shared_ptr<TextSeries>& series, std::uint64_t count) {
        perform([&] {
            const auto connection = latest_.lock();
            for (std::uint64_t index = 0; connection && index < count; ++index) {
                connection->send(series, index, "send",
                                 [this](const auto& error) { ++(error ? unsent : sent); });
            }
        });
    }

    /// The connection that became ready last; null when it has gone. Not for the queue.
    std::shared_ptr<NetworkConnection> latest() {
        std::shared_ptr<NetworkConnection> found;
        perform([&] { found = latest_.lock(); });
        return found;
    }
    void cancelListener() { listener_->cancel(); }
    void cancelLatest() {
        perform([&] { latest_.lock()->cancel(); });
    }

    std::string descriptionOfLatest() { return endpointOfLatest().description; }
    std::string hostOfLatest() { return endpointOfLatest().host.value_or("none"); }

    void perform(const std::function<void()>& act) {
        std::promise<void> done;
        queue.async([&] {
            act();
            done.set_value();
        });
        done.get_future().wait();
    }

    std::atomic<int> accepted = 0;
    std::atomic<int> ready = 0;
    std::atomic<int> open = 0;
    std::atomic<int> failures = 0;
    std::atomic<int> listenerFailures = 0;
    std::atomic<int> receiveErrors = 0;
    std::atomic<int> messages = 0;
    std::atomic<std::size_t> receivedBytes = 0;
    std::atomic<int> sent = 0;
    std::atomic<int> unsent = 0;
    std::atomic<std::size_t> lastReadableAfter = 0;
    /// Switched off, messages are counted and not answered.
    std::atomic<bool> answers = true;
    std::uint16_t port = 0;

private:
    Endpoint endpointOfLatest() {
        Endpoint endpoint;
        perform([&] {
            if (const auto connection = latest_.lock()) {
                endpoint = connection->endpoint();
            }
        });
        return endpoint;
    }

    void accept(std::shared_ptr<NetworkConnection> connection) {
        ++open;
        connections_[connection.get()] = connection;
        connection->setStateHandler([this, connection](ConnectionState state, const auto& error) {
            if (state == ConnectionState::ready) {
                ++ready;
                latest_ = connection;
                receive(connection);
            } else if (state == ConnectionState::failed || state == ConnectionState::cancelled) {
                remember(error);
                connections_.erase(connection.get());
                --open;
                ++failures;
            }
        });
        connection->start(queue);
    }

    void receive(const std::shared_ptr<NetworkConnection>& connection) {
        connection->receiveMessage([this, connection](const ReceivedContent& content) {
            if (content.error) {
                ++receiveErrors;
                return;
            }
            ++messages;
            receivedBytes += content.bytes->size();
            lastReadableAfter = content.readableAfter;
            if (answers) {
                connection->send(std::make_shared<std::string>(*content.bytes), "echo", {});
            }
            receive(connection);
        });
    }

    void remember(const std::optional<NetworkError>& error) {
        std::lock_guard lock(mutex_);
        lastFailure_ = error ? error->localizedDescription : "";
    }

    LinuxNetwork network_;
    std::shared_ptr<NetworkListener> listener_;
    // Queue only.
    std::map<NetworkConnection*, std::shared_ptr<NetworkConnection>> connections_;
    std::weak_ptr<NetworkConnection> latest_;
    std::mutex mutex_;
    std::string lastFailure_;

public:
    /// The last member, so that it goes first and nothing is called back afterwards.
    AsioQueue queue;
};

} // namespace velloway::test
