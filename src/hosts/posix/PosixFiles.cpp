#include "hosts/posix/PosixFiles.h"

#include <cerrno>
#include <deque>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

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

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { close(); }

    int number() const { return number_; }

    std::error_code close() {
        const int number = std::exchange(number_, -1);
        // Not repeated when interrupted: the descriptor has gone by then.
        return number != -1 && ::close(number) == -1 && errno != EINTR ? lastError() : std::error_code();
    }

private:
    int number_;
};

std::optional<Descriptor> openDescriptor(const std::filesystem::path& path, int flags, std::error_code& error) {
    // The system would wait for the other end of a named pipe; the caller must not.
    constexpr int commonFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    constexpr mode_t everybody = 0666;
    error.clear();
    if (path.native().find('\0') != std::string::npos) {
        error = {EINVAL, std::system_category()};
        return std::nullopt;
    }
    const int number = uninterrupted([&] { return ::open(path.c_str(), flags | commonFlags, everybody); });
    if (number == -1) {
        error = lastError();
        return std::nullopt;
    }
    return Descriptor(number);
}

std::optional<std::int64_t> appendTo(int file, std::string_view bytes, std::error_code& error) {
    error.clear();
    const off_t end = ::lseek(file, 0, SEEK_END);
    if (end == -1) {
        error = lastError();
        return std::nullopt;
    }
    const auto length = static_cast<std::int64_t>(bytes.size());
    while (!bytes.empty()) {
        const ssize_t written = uninterrupted([&] { return ::write(file, bytes.data(), bytes.size()); });
        if (written <= 0) {
            error = written == 0 ? std::error_code(EIO, std::system_category()) : lastError();
            return std::nullopt;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return end + length;
}

/// What tells a file from another one that has come to its place.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    static FileIdentity of(const Descriptor& file) {
        struct stat status {};
        ::fstat(file.number(), &status);
        return {status.st_dev, status.st_ino};
    }
    bool operator==(const FileIdentity&) const = default;
};

/// A file that is being written, with a descriptor or for the time being without one.
struct WrittenFile {
    const std::filesystem::path path;
    std::optional<Descriptor> descriptor;
    FileIdentity identity = {};
    /// Of closing the descriptor for the time being.
    std::error_code failure = {};

    void park() {
        identity = FileIdentity::of(*descriptor);
        failure = descriptor->close();
        descriptor.reset();
    }
    std::error_code reopen() {
        if (failure) {
            return std::exchange(failure, {});
        }
        std::error_code error;
        auto file = openDescriptor(path, O_WRONLY, error);
        if (file && FileIdentity::of(*file) != identity) {
            return {ESTALE, std::system_category()};
        }
        if (file) {
            descriptor.emplace(*std::move(file));
        }
        return error;
    }
    std::error_code close() { return descriptor ? descriptor->close() : std::exchange(failure, {}); }
};

class PosixFileReader : public FileReader {
public:
    explicit PosixFileReader(Descriptor file) : file_(std::move(file)) {}

    std::optional<std::int64_t> size(std::error_code& error) override {
        struct stat status {};
        error.clear();
        if (::fstat(file_.number(), &status) == -1) {
            error = lastError();
            return std::nullopt;
        }
        return status.st_size;
    }
    std::optional<std::size_t> readAt(std::int64_t offset, char* to, std::size_t room,
                                      std::error_code& error) override {
        error.clear();
        std::size_t count = 0;
        while (count < room) {
            const ssize_t got = uninterrupted([&] {
                return ::pread(file_.number(), to + count, room - count,
                               static_cast<off_t>(offset + static_cast<std::int64_t>(count)));
            });
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
    std::error_code close() override { return file_.close(); }

private:
    Descriptor file_;
};

bool isFolder(const Descriptor& file) {
    struct stat status {};
    return ::fstat(file.number(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

/// The files that have a descriptor and are not in use at the moment. Any thread.
class PosixFiles::OpenWriters {
public:
    /// Until it is given back, nobody takes the descriptor away.
    std::error_code take(WrittenFile& file) {
        const std::lock_guard lock(mutex_);
        if (file.descriptor) {
            std::erase(idle_, &file);
            return {};
        }
        return file.reopen();
    }
    void giveBack(WrittenFile& file) {
        const std::lock_guard lock(mutex_);
        idle_.push_back(&file);
        if (idle_.size() > mostOpenWriters) {
            idle_.front()->park();
            idle_.pop_front();
        }
    }
    std::error_code close(WrittenFile& file) {
        const std::lock_guard lock(mutex_);
        std::erase(idle_, &file);
        return file.close();
    }

private:
    std::mutex mutex_;
    /// The one that was used last is at the end.
    std::deque<WrittenFile*> idle_;
};

class PosixFiles::Writer : public FileWriter {
public:
    Writer(std::shared_ptr<OpenWriters> open, const std::filesystem::path& path, Descriptor file)
        : open_(std::move(open)), file_{.path = path, .descriptor = std::move(file)} {
        open_->giveBack(file_);
    }
    ~Writer() override { open_->close(file_); }

    std::optional<std::int64_t> append(std::string_view bytes, std::error_code& error) override {
        error = open_->take(file_);
        if (error) {
            return std::nullopt;
        }
        const auto length = appendTo(file_.descriptor->number(), bytes, error);
        open_->giveBack(file_);
        return length;
    }
    std::error_code close() override { return open_->close(file_); }

private:
    const std::shared_ptr<OpenWriters> open_;
    WrittenFile file_;
};

PosixFiles::PosixFiles() : openWriters_(std::make_shared<OpenWriters>()) {}
PosixFiles::~PosixFiles() = default;

std::unique_ptr<FileWriter> PosixFiles::create(const std::filesystem::path& path, std::error_code& error) {
    // Two steps: a file that may be written but not made anew is opened as it is. If both fail, the second says
    // why.
    std::error_code ignored;
    openDescriptor(path, O_WRONLY | O_CREAT | O_TRUNC, ignored);
    auto file = openDescriptor(path, O_WRONLY, error);
    return file ? std::make_unique<Writer>(openWriters_, path, *std::move(file)) : nullptr;
}

std::unique_ptr<FileReader> PosixFiles::open(const std::filesystem::path& path, std::error_code& error) {
    auto file = openDescriptor(path, O_RDONLY, error);
    if (file && isFolder(*file)) {
        error = {EISDIR, std::system_category()};
        return nullptr;
    }
    return file ? std::make_unique<PosixFileReader>(*std::move(file)) : nullptr;
}

} // namespace velloway
