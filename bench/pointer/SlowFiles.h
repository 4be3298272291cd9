#pragma once

#include "platform/Files.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <utility>

namespace velloway::bench {

/// Files on storage that takes `delay` for each call that makes, writes or closes one.
class SlowFiles : public Files {
public:
    explicit SlowFiles(Files& files) : files_(files) {}

    std::unique_ptr<FileWriter> create(const std::filesystem::path& path, std::error_code& error) override {
        wait();
        auto file = files_.create(path, error);
        return file ? std::make_unique<Writer>(*this, std::move(file)) : nullptr;
    }
    std::unique_ptr<FileReader> open(const std::filesystem::path& path, std::error_code& error) override {
        return files_.open(path, error);
    }

    std::atomic<std::chrono::milliseconds> delay{};

private:
    class Writer : public FileWriter {
    public:
        Writer(const SlowFiles& files, std::unique_ptr<FileWriter> file)
            : files_(files), file_(std::move(file)) {}

        std::optional<std::int64_t> append(std::string_view bytes, std::error_code& error) override {
            files_.wait();
            return file_->append(bytes, error);
        }
        std::error_code close() override {
            files_.wait();
            return file_->close();
        }

    private:
        const SlowFiles& files_;
        const std::unique_ptr<FileWriter> file_;
    };

    void wait() const {
        if (const auto time = delay.load(); time.count() > 0) {
            std::this_thread::sleep_for(time);
        }
    }

    Files& files_;
};

} // namespace velloway::bench
