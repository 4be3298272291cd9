#include "features/FileHandle.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velloway {

namespace {

std::error_code lastError() {
    return {errno, std::system_category()};
}

/// Repeats a system call as long as a signal interrupts it.
template <class Call> auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

// The system would wait for the other end of a named pipe; the server queue must not.
constexpr int commonFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;

} // namespace

std::optional<FileHandle> FileHandle::open(const std::filesystem::path& path, int flags,
                                           std::error_code& error) {
    if (path.native().find('\0') != std::string::npos) {
        error = {EINVAL, std::system_category()};
        return std::nullopt;
    }
    const int descriptor = uninterrupted([&] { return ::open(path.c_str(), flags | commonFlags, 0666); });
    if (descriptor == -1) {
        error = lastError();
        return std::nullopt;
    }
    error.clear();
    return FileHandle(descriptor);
}

std::error_code FileHandle::createEmpty(const std::filesystem::path& path) {
    std::error_code error;
    auto handle = open(path, O_WRONLY | O_CREAT | O_TRUNC, error);
    return handle ? handle->close() : error;
}

std::optional<FileHandle> FileHandle::openForWriting(const std::filesystem::path& path,
                                                     std::error_code& error) {
    return open(path, O_WRONLY, error);
}

std::optional<FileHandle> FileHandle::openForReading(const std::filesystem::path& path,
                                                     std::error_code& error) {
    auto handle = open(path, O_RDONLY, error);
    struct stat status {};
    if (handle && ::fstat(handle->descriptor_, &status) == 0 && S_ISDIR(status.st_mode)) {
        error = {EISDIR, std::system_category()};
        return std::nullopt;
    }
    return handle;
}

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept {
    if (this != &other) {
        close();
        descriptor_ = std::exchange(other.descriptor_, -1);
    }
    return *this;
}

FileHandle::~FileHandle() {
    close();
}

std::error_code FileHandle::seekToEnd() {
    return ::lseek(descriptor_, 0, SEEK_END) == -1 ? lastError() : std::error_code();
}

std::error_code FileHandle::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = uninterrupted([&] { return ::write(descriptor_, bytes.data(), bytes.size()); });
        if (written == -1) {
            return lastError();
        }
        if (written == 0) {
            return {EIO, std::system_category()};
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

std::optional<std::int64_t> FileHandle::offset(std::error_code& error) const {
    const off_t at = ::lseek(descriptor_, 0, SEEK_CUR);
    if (at == -1) {
        error = lastError();
        return std::nullopt;
    }
    return at;
}

std::optional<std::int64_t> FileHandle::size(std::error_code& error) const {
    struct stat status {};
    if (::fstat(descriptor_, &status) == -1) {
        error = lastError();
        return std::nullopt;
    }
    return status.st_size;
}

std::optional<std::size_t> FileHandle::read(char* to, std::size_t room, std::error_code& error) {
    std::size_t count = 0;
    while (count < room) {
        const ssize_t got = uninterrupted([&] { return ::read(descriptor_, to + count, room - count); });
        if (got == -1) {
            error = lastError();
            return std::nullopt;
        }
        if (got == 0) {
            break;
        }
        count += static_cast<std::size_t>(got);
    }
    return count;
}

std::error_code FileHandle::close() {
    const int descriptor = std::exchange(descriptor_, -1);
    // Not repeated when interrupted: the descriptor is gone by then.
    return descriptor != -1 && ::close(descriptor) == -1 && errno != EINTR ? lastError() : std::error_code();
}

} // namespace velloway
