#include "state/Uuid.h"

#include <random>

namespace velloway {

Uuid Uuid::random() {
    thread_local std::random_device device;
    Uuid uuid;
    for (std::size_t i = 0; i < uuid.bytes_.size(); i += 4) {
        std::uint32_t word = device();
        for (std::size_t k = 0; k < 4; ++k) {
            uuid.bytes_[i + k] = static_cast<std::uint8_t>(word >> (8 * k));
        }
    }
    uuid.bytes_[6] = static_cast<std::uint8_t>((uuid.bytes_[6] & 0x0f) | 0x40);
    uuid.bytes_[8] = static_cast<std::uint8_t>((uuid.bytes_[8] & 0x3f) | 0x80);
    return uuid;
}

std::string Uuid::text() const {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(36);
    for (std::size_t i = 0; i < bytes_.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            out.push_back('-');
        }
        out.push_back(digits[bytes_[i] >> 4]);
        out.push_back(digits[bytes_[i] & 0x0f]);
    }
    return out;
}

} // namespace velloway
