#include "phone/device/FindTone.h"

#include <cmath>
#include <cstdint>

namespace velloway::phone::device {

namespace {

constexpr int rate = 16000;
constexpr int seconds = 5;
constexpr double pi = 3.14159265358979;

/// Little-endian, whatever the machine is.
void add(std::string& out, std::uint32_t value, int bytes) {
    for (int at = 0; at < bytes; ++at) {
        out += static_cast<char>(value >> (8 * at) & 0xFF);
    }
}

} // namespace

std::string findTone() {
    constexpr std::uint32_t samples = rate * seconds;
    std::string wav = "RIFF";
    add(wav, 36 + samples * 2, 4);
    wav += "WAVEfmt ";
    add(wav, 16, 4);
    add(wav, 1, 2); // uncompressed
    add(wav, 1, 2); // one channel
    add(wav, rate, 4);
    add(wav, rate * 2, 4);
    add(wav, 2, 2);
    add(wav, 16, 2);
    wav += "data";
    add(wav, samples * 2, 4);
    for (std::uint32_t at = 0; at < samples; ++at) {
        const double time = static_cast<double>(at) / rate;
        const double pitch = std::fmod(time, 0.5) < 0.25 ? 1760 : 2217;
        const double level = std::fmod(time, 0.25) < 0.2 ? 30000 * std::sin(2 * pi * pitch * time) : 0;
        add(wav, static_cast<std::uint32_t>(static_cast<std::int32_t>(level)), 2);
    }
    return wav;
}

} // namespace velloway::phone::device
