#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace velloway::test {

/// The descriptors of this process that are open on `file`.
inline std::vector<int> descriptorsOf(const std::filesystem::path& file) {
    const auto wanted = std::filesystem::canonical(file);
    std::vector<int> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry.path(), gone) == wanted) {
            found.push_back(std::stoi(entry.path().filename().native()));
        }
    }
    return found;
}

} // namespace velloway::test
