#include "base64/Base64.h"
#include "base64/Base64Kernels.h"
#include "base64/Base64With.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace velloway;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

std::optional<std::string> decodeTightly(const base64::Kernel& kernel, std::string_view text) {
    const auto room = std::make_unique<char[]>(base64::decodeRoom(text.size()));
    const auto size = base64::decodeWith(kernel, text, room.get());
    return size ? std::optional(std::string(room.get(), *size)) : std::nullopt;
}

} // namespace

/// Every kernel must agree with the scalar one, in both directions, and undo what it did.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const auto decoded = base64::scalar::decode(input);
    std::string encoded;
    base64::scalar::appendEncodedEscaped(encoded, input);

    std::size_t count = 0;
    const base64::Kernel* const* const kernels = base64::usableKernels(count);
    for (std::size_t i = 0; i < count; ++i) {
        const base64::Kernel& kernel = *kernels[i];
        require(decodeTightly(kernel, input) == decoded);
        std::string text;
        base64::appendEncodedEscapedWith(kernel, text, input);
        require(text == encoded);
        require(base64::encodedEscapedSizeWith(kernel, input) == encoded.size());
        require(decodeTightly(kernel, text) == input);
    }
    return 0;
}
