#include "text/Graphemes.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/utext.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace velloway {

namespace {

icu::BreakIterator& characterBreaks() {
    thread_local const std::unique_ptr<icu::BreakIterator> breaks = [] {
        UErrorCode error = U_ZERO_ERROR;
        return std::unique_ptr<icu::BreakIterator>(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
    }();
    // The analyser takes the end of the function for the end of the thread.
    return *breaks; // NOLINT(clang-analyzer-cplusplus.NewDelete)
}

/// The break iterator set to one text, by bytes.
class Breaks {
public:
    explicit Breaks(std::string_view text) : breaks_(characterBreaks()) {
        UErrorCode error = U_ZERO_ERROR;
        utext_openUTF8(&text_, text.data(), static_cast<std::int64_t>(text.size()), &error);
        breaks_.setText(&text_, error);
    }
    Breaks(const Breaks&) = delete;
    Breaks& operator=(const Breaks&) = delete;
    ~Breaks() { utext_close(&text_); }

    icu::BreakIterator* operator->() { return &breaks_; }

private:
    icu::BreakIterator& breaks_;
    UText text_ = UTEXT_INITIALIZER;
};

} // namespace

std::string_view firstGrapheme(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    Breaks breaks(text);
    return text.substr(0, static_cast<std::size_t>(breaks->next()));
}

std::vector<std::string_view> graphemes(std::string_view text) {
    std::vector<std::string_view> pieces;
    if (text.empty()) {
        return pieces;
    }
    Breaks breaks(text);
    std::int32_t start = 0;
    for (std::int32_t end = breaks->next(); end != icu::BreakIterator::DONE; end = breaks->next()) {
        pieces.push_back(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
        start = end;
    }
    return pieces;
}

std::string_view withoutLastGrapheme(std::string_view text) {
    if (text.empty()) {
        return text;
    }
    Breaks breaks(text);
    breaks->last();
    return text.substr(0, static_cast<std::size_t>(std::max(breaks->previous(), 0)));
}

} // namespace velloway
