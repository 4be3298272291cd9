#pragma once

#include "platform/Files.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace velloway::test {

/// Files in memory, that do not ask for a folder around them. Any thread.
class FakeFiles : public Files {
public:
    using Path = std::filesystem::path;

    std::unique_ptr<FileWriter> create(const Path& path, std::error_code& error) override {
        noteWriterCall();
        if (fails(path, error)) {
            return nullptr;
        }
        put(path, "");
        return std::make_unique<Open>(*this, path);
    }
    std::unique_ptr<FileReader> open(const Path& path, std::error_code& error) override {
        if (fails(path, error)) {
            return nullptr;
        }
        if (!exists(path)) {
            error = std::make_error_code(std::errc::no_such_file_or_directory);
            return nullptr;
        }
        return std::make_unique<Open>(*this, path);
    }

    // What the test does.
    Path put(const Path& path, std::string bytes) {
        const std::lock_guard lock(mutex_);
        contents_.insert_or_assign(path.lexically_normal(), std::move(bytes));
        return path;
    }
    bool exists(const Path& path) const {
        const std::lock_guard lock(mutex_);
        return contents_.contains(path.lexically_normal());
    }
    std::string content(const Path& path) const {
        const std::lock_guard lock(mutex_);
        const auto found = contents_.find(path.lexically_normal());
        return found == contents_.end() ? std::string() : found->second;
    }
    /// How often the file is open at present.
    int openCount(const Path& path) const {
        const std::lock_guard lock(mutex_);
        const auto found = openCounts_.find(path.lexically_normal());
        return found == openCounts_.end() ? 0 : found->second;
    }

    /// By path: neither opens nor is made.
    std::map<Path, std::error_code> openErrors;
    std::error_code appendError;
    /// What is written all the same before `appendError` comes.
    std::size_t writtenBeforeError = 0;
    std::error_code sizeError;
    std::error_code readError;
    std::error_code closeError;
    /// Before a file is made, written or closed; reading is left out, but for the closing. To be set only while
    /// no other thread uses the files.
    std::function<void()> onWriterCall;

private:
    void noteWriterCall() const {
        if (onWriterCall) {
            onWriterCall();
        }
    }

    class Open : public FileWriter, public FileReader {
    public:
        Open(FakeFiles& files, const Path& path) : files_(files), path_(path.lexically_normal()) {
            files_.count(path_, 1);
        }
        ~Open() override { release(); }

        std::optional<std::int64_t> append(std::string_view bytes, std::error_code& error) override {
            files_.noteWriterCall();
            error = files_.appendError;
            const std::size_t count = error ? std::min(files_.writtenBeforeError, bytes.size()) : bytes.size();
            const std::lock_guard lock(files_.mutex_);
            std::string& content = files_.contents_[path_];
            content.append(bytes, 0, count);
            return error ? std::nullopt : std::optional(static_cast<std::int64_t>(content.size()));
        }
        std::optional<std::int64_t> size(std::error_code& error) override {
            error = files_.sizeError;
            return error ? std::nullopt
                         : std::optional(static_cast<std::int64_t>(files_.content(path_).size()));
        }
        std::optional<std::size_t> readAt(std::int64_t offset, char* to, std::size_t room,
                                          std::error_code& error) override {
            error = files_.readError;
            if (error) {
                return std::nullopt;
            }
            const std::lock_guard lock(files_.mutex_);
            const std::string& content = files_.contents_[path_];
            const auto from = static_cast<std::size_t>(offset);
            return from < content.size() ? content.copy(to, room, from) : 0;
        }
        std::error_code close() override {
            release();
            return files_.closeError;
        }

    private:
        void release() {
            if (!std::exchange(isClosed_, true)) {
                files_.noteWriterCall();
                files_.count(path_, -1);
            }
        }

        FakeFiles& files_;
        Path path_;
        bool isClosed_ = false;
    };

    bool fails(const Path& path, std::error_code& error) const {
        const auto found = openErrors.find(path);
        const bool hasNul = path.native().find('\0') != std::string::npos;
        error = found != openErrors.end() ? found->second
                : hasNul                  ? std::make_error_code(std::errc::invalid_argument)
                                          : std::error_code();
        return static_cast<bool>(error);
    }
    void count(const Path& path, int change) {
        const std::lock_guard lock(mutex_);
        openCounts_[path] += change;
    }

    mutable std::mutex mutex_;
    std::map<Path, std::string> contents_;
    std::map<Path, int> openCounts_;
};

} // namespace velloway::test
