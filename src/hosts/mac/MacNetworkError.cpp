#include "hosts/mac/MacNetworkError.h"

#include "hosts/mac/NativeRef.h"

namespace velloway {

namespace {

const char* nameOf(nw_error_domain_t domain) {
    switch (domain) {
    case nw_error_domain_posix:
        return "POSIX";
    case nw_error_domain_dns:
        return "DNS";
    case nw_error_domain_tls:
        return "TLS";
    case nw_error_domain_invalid:
    default:
        // Later systems have more.
        break;
    }
    return "unknown";
}

std::string textOf(CFStringRef string) {
    const CFIndex size =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
    std::string text(static_cast<std::size_t>(size), '\0');
    if (!CFStringGetCString(string, text.data(), size, kCFStringEncodingUTF8)) {
        return {};
    }
    text.resize(text.find('\0'));
    return text;
}

std::string localizedDescriptionOf(nw_error_t error) {
    const auto general = CoreFoundationRef<CFErrorRef>::adopt(nw_error_copy_cf_error(error));
    const auto text = CoreFoundationRef<CFStringRef>::adopt(CFErrorCopyDescription(general.get()));
    return text ? textOf(text.get()) : std::string();
}

NetworkError described(nw_error_t _Nonnull error) {
    std::string code = std::string(nameOf(nw_error_get_error_domain(error))) + " error " +
                       std::to_string(nw_error_get_error_code(error));
    std::string localized = localizedDescriptionOf(error);
    if (localized.empty()) {
        return {.localizedDescription = code, .description = code};
    }
    std::string description = code + ": " + localized;
    return {.localizedDescription = std::move(localized), .description = std::move(description)};
}

} // namespace

std::optional<NetworkError> networkErrorFrom(nw_error_t error) {
    return error != nullptr ? std::optional(described(static_cast<nw_error_t _Nonnull>(error))) : std::nullopt;
}

} // namespace velloway
