#pragma once

#include <string>
#include <string_view>

namespace velloway::bench {

/// One masked text frame, appended to `out`.
void appendFrame(std::string& out, std::string_view payload, unsigned opcode = 1);

/// A phone on loopback that does nothing but load. Ends the process with a message when something goes wrong.
class LoadClient {
public:
    /// Waits for the receiver to listen.
    explicit LoadClient(int port);
    ~LoadClient();
    LoadClient(const LoadClient&) = delete;

    void shakeHands();
    void write(std::string_view bytes);
    /// Sends a ping and waits for its answer: everything before it has been handled by then.
    void waitUntilHandled();
    /// Ends the stream and waits until the far end has closed too.
    void finish();

    /// For waiting on several.
    int descriptor() const { return socket_; }
    /// What has come, at least a byte.
    std::size_t read(char* to, std::size_t room);

private:
    std::string read();

    int socket_;
};

} // namespace velloway::bench
