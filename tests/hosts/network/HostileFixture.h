#pragma once

#include "hosts/network/EchoHost.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <string>

#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELLOWAY_MEMORY_IS_INSTRUMENTED 1
#else
#define VELLOWAY_MEMORY_IS_INSTRUMENTED 0
#endif

namespace velloway::test {

inline int openDescriptors() {
    int count = 0;
    if (DIR* directory = opendir("/proc/self/fd")) {
        while (readdir(directory)) {
            ++count;
        }
        closedir(directory);
    }
    return count;
}

/// Of this process, in bytes.
struct Memory {
    long virtualSize = 0;
    long resident = 0;

    static Memory now() {
        malloc_trim(0);
        std::ifstream file("/proc/self/statm");
        Memory memory;
        file >> memory.virtualSize >> memory.resident;
        memory.virtualSize *= sysconf(_SC_PAGESIZE);
        memory.resident *= sysconf(_SC_PAGESIZE);
        return memory;
    }
};

/// A well-behaved client beside the others, which must be answered all the time.
class Bystander {
public:
    explicit Bystander(std::uint16_t port) : phone_(port) {
        EXPECT_TRUE(phone_.shakeHands());
        thread_ = std::thread([this] { talk(); });
        EXPECT_TRUE(waitUntil([this] { return served_ > 0; }));
    }
    ~Bystander() {
        // Served once more, after all that was done to the server.
        const int before = served_;
        EXPECT_TRUE(waitUntil([&] { return served_ > before || hasFailed_; }));
        isStopping_ = true;
        thread_.join();
        EXPECT_FALSE(hasFailed_) << "the bystander was dropped after " << served_ << " answers";
        EXPECT_LT(longest_.count(), 3000) << "milliseconds that the bystander had to wait";
    }

private:
    void talk() {
        while (!isStopping_) {
            const std::string text = "bystander " + std::to_string(served_);
            const auto start = std::chrono::steady_clock::now();
            if (!phone_.sendText(text) || phone_.nextText() != text) {
                hasFailed_ = true;
                return;
            }
            longest_ = std::max(longest_, std::chrono::duration_cast<std::chrono::milliseconds>(
                                              std::chrono::steady_clock::now() - start));
            ++served_;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    RawPhone phone_;
    std::atomic<int> served_ = 0;
    std::atomic<bool> isStopping_ = false;
    std::atomic<bool> hasFailed_ = false;
    std::chrono::milliseconds longest_{0};
    std::thread thread_;
};

/// Every case runs beside a bystander, and must leave no descriptor and no memory behind.
template <class Base> class HostileFixture : public Base {
protected:
    static constexpr long memoryAllowance = 48L << 20;

    void serve(LinuxNetworkLimits limits = {}) {
        limits.closing = std::chrono::milliseconds(300);
        host.emplace(limits);
        bystander.emplace(host->port);
        descriptors = openDescriptors();
        memory = Memory::now();
    }

    void SetUp() override { serve(); }

    void TearDown() override {
        EXPECT_TRUE(waitUntil([&] { return openDescriptors() <= descriptors; }))
            << openDescriptors() - descriptors << " descriptors were left open";
        EXPECT_TRUE(waitUntil([&] { return host->open == 1; }))
            << host->open - 1 << " connections beside the bystander's are still listed";
        EXPECT_EQ(host->listenerFailures, 0);
        if (!VELLOWAY_MEMORY_IS_INSTRUMENTED) {
            EXPECT_LT(Memory::now().resident - memory.resident, memoryAllowance);
        }
        bystander.reset();
        host.reset();
    }

    RawPhone connect() {
        RawPhone phone(host->port);
        EXPECT_TRUE(phone.shakeHands());
        return phone;
    }

    /// The phone can talk like any other.
    void expectServed(RawPhone& phone) {
        EXPECT_TRUE(phone.sendText("hello"));
        EXPECT_EQ(phone.nextText(), "hello");
    }

    std::optional<EchoHost> host;
    std::optional<Bystander> bystander;
    int descriptors = 0;
    Memory memory;
};

} // namespace velloway::test
