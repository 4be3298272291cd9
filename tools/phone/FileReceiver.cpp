#include "phone/FileReceiver.h"

#include "phone/Base64.h"

#include <utility>

namespace velloway::phone {

namespace {

constexpr std::size_t longestName = 200;

/// Without the rest of a character that the cut has gone through.
void cutTo(std::string& text, std::size_t size) {
    if (text.size() > size) {
        while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) {
            --size;
        }
        text.resize(size);
    }
}

} // namespace

std::string safeFileName(const std::string& name) {
    const std::size_t slash = name.find_last_of("/\\");
    std::string safe;
    for (const char letter : slash == std::string::npos ? name : name.substr(slash + 1)) {
        const auto code = static_cast<unsigned char>(letter);
        const bool isRefused = code < 0x20 || code == 0x7F ||
                               std::string_view("\"'`$*:<>?|").find(letter) != std::string_view::npos;
        safe += isRefused ? '_' : letter;
    }
    if (safe.empty() || safe[0] == '.' || safe[0] == '-') {
        safe.insert(0, "_");
    }
    const std::string extension = std::filesystem::path(safe).extension().string();
    if (safe.size() > longestName && extension.size() < 20) {
        cutTo(safe, longestName - extension.size());
        safe += extension;
    }
    cutTo(safe, longestName);
    return safe;
}

std::string FileReceiver::fault(const std::string& line) {
    ++faults_;
    return line;
}

std::filesystem::path FileReceiver::place(const std::string& fileName) const {
    const std::filesystem::path name = safeFileName(fileName);
    std::filesystem::path path = std::filesystem::path(folder_) / name;
    // A link counts as taken wherever it leads.
    std::error_code error;
    for (int number = 2; present_ == Present::isKept && std::filesystem::symlink_status(path, error).type() !=
                                                            std::filesystem::file_type::not_found;
         ++number) {
        path = std::filesystem::path(folder_) /
               (name.stem().string() + " (" + std::to_string(number) + ")" + name.extension().string());
    }
    return path;
}

bool FileReceiver::open(const std::string& fileName, std::optional<std::int64_t> fileSize) {
    // The same file once more: what had come of it is not whole and never will be.
    if (const auto old = sessions_.find(fileName); old != sessions_.end() && present_ == Present::isKept) {
        old->second.file.close();
        std::error_code ignored;
        std::filesystem::remove(old->second.path, ignored);
        sessions_.erase(old);
    }
    Session session{{}, place(fileName), fileSize, 0};
    session.file.open(session.path, std::ios::binary | std::ios::trunc);
    if (!session.file) {
        return false;
    }
    sessions_[fileName] = std::move(session);
    refused_.erase(fileName);
    return true;
}

std::string FileReceiver::start(const std::string& fileName, std::int64_t fileSize) {
    mayBeUnannounced_ = false;
    if (!open(fileName, fileSize)) {
        return fault("cannot write " + (std::filesystem::path(folder_) / safeFileName(fileName)).string());
    }
    if (fileSize == 0 && present_ == Present::isKept) {
        // No chunk follows.
        auto whole = sessions_.extract(fileName);
        return finish(fileName, std::move(whole.mapped()));
    }
    return fileSize == 0 ? "receiving " + fileName + ": an empty file"
                         : "receiving " + fileName + ", " + std::to_string(fileSize) + " bytes";
}

std::string FileReceiver::chunk(const std::string& fileName, const std::string& base64, bool isLast) {
    auto found = sessions_.find(fileName);
    if (found == sessions_.end() && std::exchange(mayBeUnannounced_, false) && open(fileName, std::nullopt)) {
        found = sessions_.find(fileName);
    }
    if (found == sessions_.end()) {
        const bool isNew = refused_.insert(fileName).second;
        const std::string line = fault("a chunk of " + fileName + " without its start");
        return isNew || present_ == Present::isReplaced ? line : std::string();
    }
    Session& session = found->second;
    const auto bytes = decodeBase64(base64);
    if (!bytes) {
        return fault("a chunk of " + fileName + " that is not base64");
    }
    session.file.write(bytes->data(), static_cast<std::streamsize>(bytes->size()));
    session.written += static_cast<std::int64_t>(bytes->size());
    if (!isLast) {
        return {};
    }
    auto whole = sessions_.extract(found);
    return finish(fileName, std::move(whole.mapped()));
}

std::string FileReceiver::finish(const std::string& fileName, Session session) {
    session.file.close();
    const std::string count = std::to_string(session.written) + " bytes";
    if (session.file.fail()) {
        return fault("could not write all of " + fileName);
    }
    if (session.announced && session.written != *session.announced) {
        return fault("received " + fileName + ": " + count + ", but " + std::to_string(*session.announced) +
                     " were announced");
    }
    received_ = session.path.string();
    return "received " + fileName + ", " + count +
           (session.announced ? " as announced" : ", whose size was not announced") +
           (present_ == Present::isKept ? ", as " + session.path.string() : "");
}

std::vector<std::string> FileReceiver::giveUp() {
    std::vector<std::string> lines;
    for (auto& [name, session] : sessions_) {
        session.file.close();
        std::error_code ignored;
        std::filesystem::remove(session.path, ignored);
        lines.push_back(fault("the rest of " + name + " has not come; what had come is deleted"));
    }
    sessions_.clear();
    mayBeUnannounced_ = false;
    return lines;
}

std::optional<std::string> FileReceiver::takeReceived() {
    return std::exchange(received_, std::nullopt);
}

} // namespace velloway::phone
