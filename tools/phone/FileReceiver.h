#pragma once

#include <cstdint>
#include <fstream>
#include <map>
#include <string>

namespace velloway::phone {

/// Writes what the computer sends into a folder and compares the count of bytes with what was announced.
class FileReceiver {
public:
    explicit FileReceiver(std::string folder) : folder_(std::move(folder)) {}

    // Each returns a line to show; empty when there is nothing to tell.
    std::string start(const std::string& fileName, std::int64_t fileSize);
    std::string chunk(const std::string& fileName, const std::string& base64, bool isLast);

    /// Files that came to their end with another size than announced, or could not be decoded or written.
    int faults() const { return faults_; }

private:
    struct Session {
        std::ofstream file;
        std::int64_t announced = 0;
        std::int64_t written = 0;
    };

    std::string fault(const std::string& line);

    std::string folder_;
    std::map<std::string, Session> sessions_;
    int faults_ = 0;
};

} // namespace velloway::phone
