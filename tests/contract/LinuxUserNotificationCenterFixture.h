#pragma once

#include "contract/FakeNotificationService.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/notifications/LinuxUserNotificationCenter.h"
#include "hosts/linux/notifications/NotificationBanner.h"
#include "hosts/linux/notifications/ReplyPanel.h"
#include "hosts/qt/QtMainQueue.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

#include <malloc.h>

#include <chrono>
#include <map>
#include <memory>

namespace velloway::test {

constexpr uint expired = 1;
constexpr uint dismissed = 2;
/// How long the centre waits for a service that says nothing.
constexpr std::chrono::seconds serviceTimeout{10};

/// Answers as the program does unless told otherwise, and keeps what comes.
class RecordingDelegate : public UserNotificationCenterDelegate {
public:
    void didReceive(const NotificationResponse& response, std::function<void()> completion) override {
        responses.push_back(response);
        completion();
    }
    void willPresent(const NotificationRequest& request,
                     std::function<void(unsigned options)> completion) override {
        asked.push_back(request);
        if (answersAtOnce) {
            completion(options);
        } else {
            held.push_back(std::move(completion));
        }
    }

    unsigned options = presentationOptions::banner | presentationOptions::sound | presentationOptions::badge;
    bool answersAtOnce = true;
    std::vector<NotificationRequest> asked;
    std::vector<NotificationResponse> responses;
    std::vector<std::function<void(unsigned)>> held;
};

/// What the process has asked the allocator for.
inline std::size_t bytesInUse() {
    const auto statistics = mallinfo2();
    return statistics.uordblks + statistics.hblkhd;
}

template <class Panel> std::vector<Panel*> visible() {
    std::vector<Panel*> found;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* panel = qobject_cast<Panel*>(window); panel && panel->isVisible()) {
            found.push_back(panel);
        }
    }
    return found;
}

inline void press(QWidget* widget, int key, const QString& text = {}) {
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(widget, &down);
}

inline void type(QWidget* widget, const QString& text) {
    for (QChar c : text) {
        press(widget, 0, c);
    }
}

class LinuxUserNotificationCenterTest : public testing::Test {
protected:
    LinuxUserNotificationCenterTest() {
        center_.setDelegate(&delegate_);
        center_.setCategories({{"REPLY_CATEGORY", {{"REPLY_ACTION", "Reply", "Send", "Type your reply..."}}}});
    }

    void start(QStringList capabilities) {
        service_ = std::make_unique<FakeNotificationService>(std::move(capabilities));
    }
    void add(NotificationRequest request) {
        center_.add(request, [this](const auto& error) { errors_.push_back(error); });
    }
    static NotificationRequest message(const std::string& identifier, const std::string& body = "Hello?") {
        return {identifier,
                {.title = "Chat",
                 .subtitle = "Ada",
                 .body = body,
                 .hasDefaultSound = true,
                 .threadIdentifier = "Chat",
                 .categoryIdentifier = "REPLY_CATEGORY"}};
    }
    static NotificationRequest plain(const std::string& identifier) {
        return {identifier, {.title = "File Received", .body = "a.jpg"}};
    }
    static NotificationRequest numbered(int number) {
        return {"identifier " + std::to_string(number), {.title = std::to_string(number), .body = "Hello?"}};
    }
    /// How often each title has come to the present service.
    std::map<QString, int> timesShown() const {
        std::map<QString, int> times;
        for (const auto& call : service_->calls) {
            ++times[call.summary];
        }
        return times;
    }
    /// Adds and waits until the completion has been called.
    void show(const NotificationRequest& request) {
        const auto before = errors_.size();
        add(request);
        ASSERT_TRUE(waitFor([&] { return errors_.size() > before; }));
    }
    /// Waits until the centre has handled everything that the service has sent so far.
    void settle() {
        show(plain("settle"));
        center_.removeDelivered({"settle"});
    }
    const FakeNotificationService::Notification& lastCall() const { return service_->calls.back(); }

    RecordingDelegate delegate_;
    QtMainQueue main_;
    LinuxUserNotificationCenter center_{main_};
    std::unique_ptr<FakeNotificationService> service_;
    std::vector<std::optional<std::string>> errors_;
};

} // namespace velloway::test
