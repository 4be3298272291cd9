#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace velloway::test {

/// A folder that goes when the test ends.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "velloway-XXXXXX").native();
        if (!::mkdtemp(pattern.data())) {
            throw std::runtime_error("no temporary folder");
        }
        path_ = pattern;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

    std::filesystem::path write(std::string_view name, std::string_view content) const {
        const auto file = path_ / name;
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

private:
    std::filesystem::path path_;
};

inline std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace velloway::test
