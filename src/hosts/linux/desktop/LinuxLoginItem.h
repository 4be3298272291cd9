#pragma once

#include "platform/LoginItem.h"

#include <filesystem>
#include <string>

namespace velloway {

/// An autostart entry in the user's settings. Main thread.
class LinuxLoginItem : public LoginItem {
public:
    /// `program` is what the entry starts.
    explicit LinuxLoginItem(std::filesystem::path program = ownProgram(),
                            const std::filesystem::path& folder = autostartFolder());

    /// Where this program lies for good: the image that it was unpacked from, where there is one.
    static std::filesystem::path ownProgram();
    static std::filesystem::path autostartFolder();

    /// `notFound` when the entry starts a program that is no longer there.
    LoginItemStatus status() const override;
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

private:
    std::filesystem::path program_;
    std::filesystem::path entry_;
};

} // namespace velloway
