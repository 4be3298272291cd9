#include "FileLoad.h"

#include "PhoneSocket.h"
#include "base64/Base64.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <random>
#include <string>

namespace velloway::bench {

namespace {

constexpr std::size_t chunkBytes = std::size_t{1} << 20;
constexpr int chunksPerFile = 256;

/// Random bytes, so that the text has as many escaped slashes as that of any compressed file.
std::string chunkMessage() {
    std::mt19937 random(42);
    std::string bytes(chunkBytes, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    std::string message = R"({"action":"file_chunk","fileName":"bench.bin","fileData":")";
    base64::appendEncodedEscaped(message, bytes);
    return message + R"(","isLast":false})";
}

} // namespace

void FileLoad::send(std::uint16_t port, int mebibytesPerSecond) const {
    using Clock = std::chrono::steady_clock;
    PhoneSocket phone(port);
    const std::string chunk = chunkMessage();
    const auto start = Clock::now();
    for (int sent = 0; !isStopping_; ++sent) {
        if (sent % chunksPerFile == 0) {
            phone.send(R"({"action":"file_transfer_start","fileName":"bench.bin","fileSize":268435456})");
        }
        phone.send(chunk);
        if (mebibytesPerSecond != fullSpeed) {
            std::this_thread::sleep_until(start + std::chrono::nanoseconds(std::chrono::seconds(1)) *
                                                      (sent + 1) / mebibytesPerSecond);
        }
    }
}

} // namespace velloway::bench
