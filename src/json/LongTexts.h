#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// The long texts of a message that need no parser: they hold printable ASCII alone, and "\/" is their only
/// escape. Pieces of files are such texts. With an empty text in the place of each, a few bytes are left to
/// parse.
///
/// What is left is JSON exactly if the whole message is.
class LongTexts {
public:
    /// Texts shorter than `least` stay where they are.
    explicit LongTexts(std::size_t least) : least_(least) {}

    /// Returns what is left of the message, with room to read `readableAfter` bytes beyond; absent when no
    /// text that would make a difference was found. Valid, as all the texts are, until the next call and as
    /// long as the message lives.
    std::optional<std::string_view> cut(std::string_view message, std::size_t readableAfter);
    void clear() { texts_.clear(); }

    /// To be called for each text and key that is left, in their order, until it returns false. `place` stands
    /// for the text from then on, if it was cut out.
    bool passText(const void* place);

    /// Null where no text was cut out.
    const std::string_view* escaped(const void* place) const;
    /// As it reads without the backslashes.
    std::string_view plain(const void* place) const;

private:
    struct Text {
        std::string_view escaped;
        std::size_t ordinal;
        const void* place = nullptr;
        /// Made when somebody asks.
        mutable std::optional<std::string> plain{};
    };

    const Text* find(const void* place) const;
    void findTexts(std::string_view message);

    std::size_t least_;
    std::vector<Text> texts_;
    /// Of the walk through what is left.
    std::size_t textsPassed_ = 0;
    std::size_t textsFound_ = 0;
    std::string rest_;
};

} // namespace velloway
