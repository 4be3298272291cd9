#pragma once

#include <initializer_list>
#include <string_view>

namespace velloway {

/// Plain lines for whoever watches the process. Any thread may write; lines never mix.
class Log {
public:
    virtual ~Log() = default;

    /// Writes the pieces as one line, at once. Each caller names its area in brackets itself.
    virtual void line(std::initializer_list<std::string_view> pieces) = 0;
};

} // namespace velloway
