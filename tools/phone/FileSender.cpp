#include "phone/FileSender.h"

#include "phone/Base64.h"
#include "phone/Messages.h"

#include <boost/json.hpp>

#include <filesystem>
#include <stdexcept>

namespace velloway::phone {

namespace {

std::string escapedSlashes(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 32);
    for (const char letter : text) {
        if (letter == '/') {
            out += '\\';
        }
        out += letter;
    }
    return out;
}

} // namespace

FileSender::FileSender(FileSendOptions options)
    : options_(std::move(options)), file_(options_.path, std::ios::binary) {
    std::error_code error;
    size_ = static_cast<std::int64_t>(std::filesystem::file_size(options_.path, error));
    if (error || !file_) {
        throw std::runtime_error("cannot read " + options_.path);
    }
    if (options_.name.empty()) {
        options_.name = std::filesystem::path(options_.path).filename().string();
    }
    if (options_.isWhole) {
        options_.chunkSize = static_cast<std::size_t>(size_);
    }
    sent_ = static_cast<std::int64_t>(options_.firstChunk * options_.chunkSize);
    file_.seekg(sent_);
    isStarted_ = !options_.withStart;
}

std::optional<std::string> FileSender::next() {
    if (!isStarted_) {
        isStarted_ = true;
        return messages::fileTransferStart(options_.name, size_);
    }
    if (isOver_) {
        return std::nullopt;
    }
    return chunk();
}

std::string FileSender::chunk() {
    std::string bytes(options_.chunkSize, '\0');
    file_.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file_.gcount()));
    sent_ += static_cast<std::int64_t>(bytes.size());
    ++chunks_;
    isOver_ = bytes.empty() || sent_ >= size_;

    const std::string data = encodeBase64(bytes);
    std::string message = R"({"action":")";
    message += options_.isWhole ? "file_transfer" : "file_chunk";
    message += R"(","fileName":)" + boost::json::serialize(boost::json::string(options_.name));
    message += R"(,"fileData":")" + (options_.escaped ? escapedSlashes(data) : data);
    message += R"(","isLast":)";
    message += isOver_ ? "true}" : "false}";
    return message;
}

} // namespace velloway::phone
