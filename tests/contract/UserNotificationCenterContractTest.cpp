#include "contract/FakeNotificationService.h"
#include "desktop/WaitFor.h"
#include "fakes/FakeUserNotificationCenter.h"
#include "hosts/linux/notifications/LinuxUserNotificationCenter.h"
#include "hosts/linux/notifications/NotificationBanner.h"
#include "hosts/qt/QtMainQueue.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <algorithm>
#include <memory>

namespace velloway::test {
namespace {

/// One way to show notifications, and how to see what it shows.
class NotificationDesktop {
public:
    virtual ~NotificationDesktop() = default;
    virtual UserNotificationCenter& center() = 0;
    /// The titles on screen, sorted.
    virtual std::vector<std::string> titles() = 0;
    virtual std::size_t mostAtOnce() const { return 1000; }
};

class RecordedDesktop : public NotificationDesktop {
public:
    UserNotificationCenter& center() override { return center_; }
    std::vector<std::string> titles() override {
        std::vector<std::string> found;
        for (const auto& [identifier, request] : center_.delivered) {
            found.push_back(request.content.title);
        }
        std::sort(found.begin(), found.end());
        return found;
    }

private:
    FakeUserNotificationCenter center_;
};

class ServiceDesktop : public NotificationDesktop {
public:
    UserNotificationCenter& center() override { return center_; }
    std::vector<std::string> titles() override {
        std::vector<std::string> found;
        for (const auto& [id, notification] : service_.onScreen) {
            found.push_back(notification.summary.toStdString());
        }
        std::sort(found.begin(), found.end());
        return found;
    }

private:
    FakeNotificationService service_;
    QtMainQueue main_;
    LinuxUserNotificationCenter center_{main_};
};

class BannerDesktop : public NotificationDesktop {
public:
    UserNotificationCenter& center() override { return center_; }
    std::vector<std::string> titles() override {
        std::vector<std::string> found;
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible() && qobject_cast<const NotificationBanner*>(window)) {
                found.push_back(window->windowTitle().toStdString());
            }
        }
        std::sort(found.begin(), found.end());
        return found;
    }
    std::size_t mostAtOnce() const override { return 4; }

private:
    QtMainQueue main_;
    LinuxUserNotificationCenter center_{main_};
};

struct DesktopKind {
    const char* name;
    std::unique_ptr<NotificationDesktop> (*make)();
};

void PrintTo(const DesktopKind& kind, std::ostream* out) {
    *out << kind.name;
}

template <class Desktop> std::unique_ptr<NotificationDesktop> make() {
    return std::make_unique<Desktop>();
}

using Titles = std::vector<std::string>;

class UserNotificationCenterContract : public testing::TestWithParam<DesktopKind> {
protected:
    void add(const std::string& identifier, const std::string& title) {
        center().add({identifier, {.title = title, .body = "body"}}, [this](const auto& error) {
            ++completions_;
            EXPECT_EQ(error, std::nullopt);
        });
        ++adds_;
    }
    bool shows(const Titles& expected) {
        return waitFor([&] { return desktop_->titles() == expected && completions_ == adds_; });
    }
    UserNotificationCenter& center() { return desktop_->center(); }

    std::unique_ptr<NotificationDesktop> desktop_ = GetParam().make();
    int adds_ = 0;
    int completions_ = 0;
};

TEST_P(UserNotificationCenterContract, RequestsUnderDifferentIdentifiersStandSideBySide) {
    add("one", "First");
    add("two", "Second");
    EXPECT_TRUE(shows({"First", "Second"}));
}

TEST_P(UserNotificationCenterContract, ARequestUnderAnIdentifierOnScreenReplacesThatNotification) {
    add("one", "First");
    add("two", "Second");
    ASSERT_TRUE(shows({"First", "Second"}));
    add("one", "Third");
    EXPECT_TRUE(shows({"Second", "Third"}));
}

TEST_P(UserNotificationCenterContract, RequestsInARowUnderOneIdentifierLeaveTheLast) {
    for (int i = 0; i < 20; ++i) {
        add("one", "Number " + std::to_string(i));
    }
    EXPECT_TRUE(shows({"Number 19"}));
}

TEST_P(UserNotificationCenterContract, RemovingTakesTheNamedNotificationsAndNoOther) {
    add("one", "First");
    add("two", "Second");
    add("three", "Third");
    ASSERT_TRUE(shows({"First", "Second", "Third"}));
    center().removeDelivered({"one", "three", "never there"});
    EXPECT_TRUE(shows({"Second"}));
}

TEST_P(UserNotificationCenterContract, RemovingAtOnceLeavesNothing) {
    add("one", "First");
    center().removeDelivered({"one"});
    center().removePending({"one"});
    add("mark", "Mark");
    EXPECT_TRUE(shows({"Mark"}));
}

TEST_P(UserNotificationCenterContract, ANotificationComesBackUnderARemovedIdentifier) {
    add("one", "First");
    center().removeDelivered({"one"});
    center().removePending({"one"});
    add("one", "Second");
    EXPECT_TRUE(shows({"Second"}));
}

TEST_P(UserNotificationCenterContract, AnyTextIsAnIdentifierAlsoTheEmptyOne) {
    const std::vector<std::string> odd{"", "Chat:Ada:Hi\n\"<&>' \t", std::string("a\0b", 3), "ключ 👍"};
    for (std::size_t i = 0; i < odd.size(); ++i) {
        add(odd[i], "Title " + std::to_string(i));
    }
    ASSERT_TRUE(shows({"Title 0", "Title 1", "Title 2", "Title 3"}));
    add("", "Title 4");
    add(odd[2], "Title 5");
    ASSERT_TRUE(shows({"Title 1", "Title 3", "Title 4", "Title 5"}));
    center().removeDelivered(odd);
    EXPECT_TRUE(shows({}));
}

TEST_P(UserNotificationCenterContract, TheCompletionMayBeAbsent) {
    center().add({"one", {.title = "First"}}, nullptr);
    center().add({"one", {.title = "Second"}}, nullptr);
    EXPECT_TRUE(shows({"Second"}));
}

TEST_P(UserNotificationCenterContract, ABurstIsShownWhole) {
    const std::size_t count = std::min<std::size_t>(200, desktop_->mostAtOnce());
    Titles expected;
    for (std::size_t i = 0; i < count; ++i) {
        expected.push_back("Title " + std::to_string(i));
        add("identifier " + std::to_string(i), expected.back());
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_TRUE(shows(expected));
}

INSTANTIATE_TEST_SUITE_P(Desktops, UserNotificationCenterContract,
                         testing::Values(DesktopKind{"fake", make<RecordedDesktop>},
                                         DesktopKind{"service", make<ServiceDesktop>},
                                         DesktopKind{"ownBanners", make<BannerDesktop>}),
                         [](const auto& testCase) { return std::string(testCase.param.name); });

} // namespace
} // namespace velloway::test
