#pragma once

#include "platform/Accessibility.h"
#include "platform/Host.h"
#include "platform/InputEvents.h"
#include "platform/Pasteboard.h"
#include "platform/Scripts.h"
#include "platform/UserDefaults.h"
#include "platform/UserNotificationCenter.h"

#include <atomic>
#include <chrono>
#include <filesystem>

/// A desktop on which nothing happens, so that only the bridge itself is measured.
namespace velloway::bench {

class QuietDefaults : public UserDefaults {
public:
    explicit QuietDefaults(std::int64_t port) : port_(port) {}
    std::int64_t integer(std::string_view key) const override { return key == "port" ? port_ : 0; }
    bool has(std::string_view key) const override { return key == "port"; }
    void setInteger(std::string_view, std::int64_t) override {}
    [[nodiscard]] Subscription observe(std::string_view, std::function<void(std::int64_t)>) override {
        return {};
    }

private:
    std::int64_t port_;
};

class QuietHost : public Host {
public:
    explicit QuietHost(std::filesystem::path downloads) : downloads_(std::move(downloads)) {}
    std::optional<std::string> localizedName() const override { return "bench"; }
    std::optional<std::filesystem::path> downloadsDirectory() const override { return downloads_; }
    Instant now() const override { return std::chrono::system_clock::now(); }
    std::string locale() const override { return "en_GB"; }
    std::string timeZone() const override { return "Europe/London"; }
    std::optional<std::vector<NetworkInterface>> networkInterfaces() const override { return {}; }
    std::vector<std::string> interfacePrefixes() const override { return {}; }

private:
    std::filesystem::path downloads_;
};

class QuietPasteboard : public Pasteboard {
public:
    void clearContents() override {}
    bool setString(std::string_view) override { return true; }
    void readString(std::function<void(std::optional<std::string>)> done) override { done({}); }
};

class QuietAccessibility : public Accessibility {
public:
    bool isTrusted() override { return true; }
    bool isTrustedWithPrompt() override { return true; }
};

class QuietScripts : public Scripts {
public:
    std::optional<std::string> run(const SystemScript&) override { return {}; }
};

class QuietNotifications : public UserNotificationCenter {
public:
    void setDelegate(UserNotificationCenterDelegate*) override {}
    void add(const NotificationRequest&,
             std::function<void(const std::optional<std::string>&)> completion) override {
        if (completion) {
            completion({});
        }
    }
    void removeDelivered(const std::vector<std::string>&) override {}
    void removePending(const std::vector<std::string>&) override {}
    void getAuthorizationStatus(std::function<void(AuthorizationStatus)>) override {}
    void requestAuthorization(unsigned, std::function<void(bool, const std::optional<std::string>&)>) override {
    }
    void setCategories(const std::vector<NotificationCategory>&) override {}
};

/// Only counts.
class QuietInput : public InputEvents {
public:
    void pressKey(Key, Modifiers) override { ++posted; }
    void typeText(std::string_view) override { ++posted; }
    void pressMediaKey(MediaKey) override { ++posted; }
    void movePointer(double, double) override { ++posted; }
    void click(MouseButton) override { ++posted; }

    std::atomic<long> posted = 0;
};

} // namespace velloway::bench
