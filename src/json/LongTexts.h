#pragma once

#include <cstddef>
#include <limits>
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

    /// Calls `place` with the number of each text among all texts and keys that are left, in order, and keeps
    /// what it returns to find the text by.
    template <class Place> void setPlaces(Place place) {
        for (Text& text : texts_) {
            text.place = place(text.ordinal);
        }
    }

    /// Null where no text was cut out.
    const std::string_view* escaped(std::size_t place) const;
    /// As it reads without the backslashes.
    std::string_view plain(std::size_t place) const;

private:
    struct Text {
        std::string_view escaped;
        std::size_t ordinal;
        std::size_t place = std::numeric_limits<std::size_t>::max();
        /// Made when somebody asks.
        mutable std::optional<std::string> plain{};
    };

    const Text* find(std::size_t place) const;
    void findTexts(std::string_view message);

    std::size_t least_;
    std::vector<Text> texts_;
    std::string rest_;
};

} // namespace velloway
