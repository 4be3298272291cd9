#pragma once

#include "hosts/mac/FakeObject.h"

#include <functional>
#include <string>

namespace velloway::test {

/// A string, and also an error, which is no more than its text here.
class FakeText : public FakeObject {
public:
    explicit FakeText(std::string said) : text(std::move(said)) {}
    const std::string text;
};

/// The system's answer to whether this process is trusted, and what was asked.
struct FakeAccessibility {
    bool isTrusted = false;
    int questions = 0;
    int prompts = 0;
    std::function<void()> onPrompt;
};
extern FakeAccessibility fakeAccessibility;

} // namespace velloway::test
