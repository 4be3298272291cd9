#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velloway {

/// Writes one flat JSON object, compact and in the order of the calls. A slash is written as `\/`.
class JsonWriter {
public:
    /// Room for this many bytes is made at once.
    explicit JsonWriter(std::size_t expectedSize = 128);
    /// Writes into the memory of `room`, whose text is dropped.
    explicit JsonWriter(std::string room);

    void add(std::string_view key, std::string_view text);
    void add(std::string_view key, std::int64_t number);
    void addBoolean(std::string_view key, bool value);
    /// Adds the base64 text of `bytes`, without line breaks.
    void addBase64(std::string_view key, std::string_view bytes);

    /// Whether every text so far was UTF-8.
    bool isValid() const { return isValid_; }

    std::string finish() &&;

private:
    void key(std::string_view key);

    std::string out_;
    bool isValid_ = true;
};

} // namespace velloway
