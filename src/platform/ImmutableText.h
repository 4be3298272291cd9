#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace velloway {

/// A text that never changes; its copies share the bytes. For what a phone may send in any size and several
/// objects keep. Any thread.
class ImmutableText {
public:
    ImmutableText() : ImmutableText(std::string()) {}
    ImmutableText(std::string text) : bytes_(std::make_shared<const std::string>(std::move(text))) {}
    ImmutableText(std::string_view text) : ImmutableText(std::string(text)) {}
    ImmutableText(const char* text) : ImmutableText(std::string(text)) {}

    const std::string& string() const { return *bytes_; }
    operator const std::string&() const { return *bytes_; }
    operator std::string_view() const { return *bytes_; }
    bool empty() const { return bytes_->empty(); }

    friend bool operator==(const ImmutableText& one, const ImmutableText& other) {
        return one.bytes_ == other.bytes_ || *one.bytes_ == *other.bytes_;
    }

private:
    std::shared_ptr<const std::string> bytes_;
};

} // namespace velloway
