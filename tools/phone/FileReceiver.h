#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace velloway::phone {

/// What a file of the computer is called here: the last part of the name, without what folders of telephones
/// refuse (control characters and `"*:<>?|\`), quotes, or a dot at the head, and not too long. Never empty.
std::string safeFileName(const std::string& name);

/// Writes what the computer sends into a folder and compares the count of bytes with what was announced.
class FileReceiver {
public:
    /// A file that is there already is kept, or written over.
    enum class Present { isKept, isReplaced };

    explicit FileReceiver(std::string folder, Present present = Present::isReplaced)
        : folder_(std::move(folder)), present_(present) {}

    // Each returns a line to show; empty when there is nothing to tell.
    std::string start(const std::string& fileName, std::int64_t fileSize);
    std::string chunk(const std::string& fileName, const std::string& base64, bool isLast);

    /// A start has come that could not be read, as happens with quotes in a name: the next file may begin with
    /// its first chunk, and is not compared with anything.
    void expectUnannounced() { mayBeUnannounced_ = true; }

    /// The link is gone: what is not whole is given up, and its rest will not be taken. Returns lines to show.
    std::vector<std::string> giveUp();

    /// The path of a file that has just become whole, once.
    std::optional<std::string> takeReceived();

    /// Files that came to their end with another size than announced, or could not be decoded or written.
    int faults() const { return faults_; }

private:
    struct Session {
        std::ofstream file;
        std::filesystem::path path;
        /// Absent when it was not announced.
        std::optional<std::int64_t> announced;
        std::int64_t written = 0;
    };

    std::string fault(const std::string& line);
    std::filesystem::path place(const std::string& fileName) const;
    bool open(const std::string& fileName, std::optional<std::int64_t> fileSize);
    std::string finish(const std::string& fileName, Session session);

    std::string folder_;
    Present present_;
    std::map<std::string, Session> sessions_;
    /// Names of which chunks without a start have been reported.
    std::set<std::string> refused_;
    bool mayBeUnannounced_ = false;
    std::optional<std::string> received_;
    int faults_ = 0;
};

} // namespace velloway::phone
