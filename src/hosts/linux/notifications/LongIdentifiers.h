#pragma once

#include "platform/ImmutableText.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>

namespace velloway {

/// The identifiers that are too long to be copied to every place that needs them: there a name stands for each,
/// and the identifier is kept once. Phones send them in any size. Main thread, except the static operations.
class LongIdentifiers {
public:
    static constexpr std::size_t limit = 256;

    static bool isLong(const std::string& identifier) { return identifier.size() > limit; }
    /// The identifier itself when it is not long. No two identifiers have the same name.
    static std::string nameOf(const std::string& identifier);

    /// Forgets those first whose name is no longer `isInUse`.
    void keep(const std::string& name, ImmutableText identifier,
              const std::function<bool(const std::string& name)>& isInUse);
    /// The name itself when it stands for nothing longer.
    std::string identifierOf(const std::string& name) const;

private:
    std::map<std::string, ImmutableText> byName_;
};

} // namespace velloway
