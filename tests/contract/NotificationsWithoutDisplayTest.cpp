#include "contract/FakeNotificationService.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/notifications/LinuxUserNotificationCenter.h"
#include "hosts/qt/QtMainQueue.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

namespace velloway::test {
namespace {

/// A message bus that can be taken away and come back under its address.
class MortalBus {
public:
    MortalBus() {
        QFile config(place_.filePath("bus.conf"));
        config.open(QFile::WriteOnly);
        config.write(QStringLiteral("<busconfig><type>session</type><listen>%1</listen><auth>EXTERNAL</auth>"
                                    "<policy context=\"default\"><allow send_destination=\"*\"/>"
                                    "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>")
                         .arg(address())
                         .toUtf8());
    }
    ~MortalBus() { end(); }

    QString address() const { return "unix:path=" + place_.filePath("bus"); }
    bool start() {
        process_.start("dbus-daemon", {"--nofork", "--nopidfile", "--print-address=1",
                                       "--config-file=" + place_.filePath("bus.conf")});
        return process_.waitForReadyRead();
    }
    void end() {
        process_.kill();
        process_.waitForFinished();
        QFile::remove(place_.filePath("bus"));
    }

private:
    QTemporaryDir place_;
    QProcess process_;
};

class NotificationsWithoutDisplay : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(bus_->start()); }
    void TearDown() override { bus_->end(); }

    void add(const std::string& identifier, std::optional<std::string> category = std::nullopt) {
        center_.add({identifier, {.title = "Title", .body = "body", .categoryIdentifier = std::move(category)}},
                    [this](const auto& error) { errors_.push_back(error); });
    }
    bool isAnswered(std::size_t count) {
        return waitFor([=, this] { return errors_.size() == count; });
    }

public:
    static inline MortalBus* bus_ = nullptr;

protected:
    QtMainQueue main_;
    LinuxUserNotificationCenter center_{main_};
    std::vector<std::optional<std::string>> errors_;
};

TEST_F(NotificationsWithoutDisplay, WithNeitherServiceNorDisplayTheCompletionGetsAnError) {
    add("one");
    ASSERT_TRUE(isAnswered(1));
    EXPECT_EQ(errors_[0], "There is no notification service and no display to show the notification on.");
}

TEST_F(NotificationsWithoutDisplay, AServiceWithoutActionsShowsWhatNobodyCouldAnswerAnyway) {
    FakeNotificationService service({"body"});
    center_.setCategories({{"REPLY_CATEGORY", {{"REPLY_ACTION", "Reply", "Send", "Type your reply..."}}}});
    add("one", "REPLY_CATEGORY");
    ASSERT_TRUE(isAnswered(1));
    EXPECT_EQ(errors_[0], std::nullopt);
    ASSERT_EQ(service.calls.size(), 1u);
    EXPECT_TRUE(service.calls[0].actions.empty());
}

TEST_F(NotificationsWithoutDisplay, ABusThatDiesEndsWhatIsUnderWayAndOneThatComesBackIsUsed) {
    auto service = std::make_unique<FakeNotificationService>();
    add("one");
    ASSERT_TRUE(isAnswered(1));
    service->holdsAnswers = true;
    add("one");
    ASSERT_TRUE(waitFor([&] { return service->held.size() == 1; }));
    bus_->end();
    ASSERT_TRUE(isAnswered(2));
    EXPECT_TRUE(errors_[1].has_value());
    add("one");
    ASSERT_TRUE(isAnswered(3));
    EXPECT_TRUE(errors_[2].has_value());

    service.reset();
    ASSERT_TRUE(bus_->start());
    service = std::make_unique<FakeNotificationService>();
    add("one");
    ASSERT_TRUE(isAnswered(4));
    EXPECT_EQ(errors_[3], std::nullopt);
    ASSERT_EQ(service->calls.size(), 1u);
    EXPECT_EQ(service->calls[0].replacesId, 0u);
}

} // namespace
} // namespace velloway::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    velloway::test::MortalBus bus;
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    velloway::test::NotificationsWithoutDisplay::bus_ = &bus;
    return RUN_ALL_TESTS();
}
