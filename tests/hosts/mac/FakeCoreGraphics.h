#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velloway::test {

/// One event as it was when it was posted.
struct PostedEvent {
    std::string kind;
    int tap = -1;
    /// The state of the source that it was made with; absent is -1.
    int sourceState = -1;
    int key = -1;
    std::uint64_t flags = 0;
    int timesFlagsWereSet = 0;
    int mouseType = 0;
    int button = -1;
    double x = 0;
    double y = 0;
    std::u16string text;
    int timesTextWasSet = 0;

    bool operator==(const PostedEvent&) const = default;
};

struct FakeCoreGraphics {
    std::vector<PostedEvent> posted;
    /// Counts sources and events together.
    int creations = 0;
    /// Which creation fails, from 0; none at -1.
    int failsAt = -1;
    double pointerX = 100;
    double pointerY = 200;
};
extern FakeCoreGraphics fakeCoreGraphics;

} // namespace velloway::test
