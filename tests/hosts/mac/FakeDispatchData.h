#pragma once

#include "hosts/mac/FakeObject.h"

#include <string>
#include <string_view>
#include <vector>

namespace velloway::test {

/// Bytes as the platform hands them around: in regions that need not lie side by side.
class FakeData : public FakeObject {
public:
    explicit FakeData(std::vector<std::string> regions);
    /// Somebody else's bytes, given back through `destructor`.
    FakeData(std::string_view inPlace, void (^destructor)(void));
    ~FakeData() override;

    std::string bytes() const;
    std::string_view firstRegion() const { return regions_.front(); }
    /// Where bytes that were not copied lie.
    const char* inPlace() const { return inPlace_.data(); }

private:
    std::vector<std::string> regions_;
    std::string_view inPlace_;
    HeldBlock<void (^)(void)> destructor_;
};

} // namespace velloway::test
