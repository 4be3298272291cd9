#include "phone/FileReceiver.h"

#include "phone/Base64.h"

#include <filesystem>

namespace velloway::phone {

std::string FileReceiver::fault(const std::string& line) {
    ++faults_;
    return line;
}

std::string FileReceiver::start(const std::string& fileName, std::int64_t fileSize) {
    // Only the last part of the name counts, so that a name cannot lead out of the folder.
    const auto target = std::filesystem::path(folder_) / std::filesystem::path(fileName).filename();
    Session session{std::ofstream(target, std::ios::binary | std::ios::trunc), fileSize, 0};
    if (!session.file) {
        return fault("cannot write " + target.string());
    }
    sessions_[fileName] = std::move(session);
    return fileSize == 0 ? "receiving " + fileName + ": an empty file"
                         : "receiving " + fileName + ", " + std::to_string(fileSize) + " bytes";
}

std::string FileReceiver::chunk(const std::string& fileName, const std::string& base64, bool isLast) {
    const auto found = sessions_.find(fileName);
    if (found == sessions_.end()) {
        return fault("a chunk of " + fileName + " without its start");
    }
    Session& session = found->second;
    const auto bytes = decodeBase64(base64);
    if (!bytes) {
        return fault("a chunk of " + fileName + " that is no base64");
    }
    session.file.write(bytes->data(), static_cast<std::streamsize>(bytes->size()));
    session.written += static_cast<std::int64_t>(bytes->size());
    if (!isLast) {
        return {};
    }
    session.file.close();
    const bool isWritten = !session.file.fail();
    const auto written = session.written;
    const auto announced = session.announced;
    sessions_.erase(found);
    if (!isWritten) {
        return fault("could not write all of " + fileName);
    }
    if (written != announced) {
        return fault("received " + fileName + ": " + std::to_string(written) + " bytes, but " +
                     std::to_string(announced) + " were announced");
    }
    return "received " + fileName + ", " + std::to_string(written) + " bytes as announced";
}

} // namespace velloway::phone
