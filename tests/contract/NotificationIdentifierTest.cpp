#include "contract/LinuxUserNotificationCenterFixture.h"
#include "hosts/linux/notifications/LongIdentifiers.h"

#include <algorithm>

namespace velloway::test {
namespace {

TEST_F(LinuxUserNotificationCenterTest, AnIdentifierOfAnyLengthIsAnsweredReplacedAndRemovedWhole) {
    start({"body", "actions", "inline-reply"});
    for (const std::size_t length : {1u, 256u, 257u, 320u, 100'000u}) {
        const std::string one = std::string(length - 1, 'k') + "1";
        const std::string other = std::string(length - 1, 'k') + "2";
        delegate_.asked.clear();
        delegate_.responses.clear();
        show(message(one));
        const uint id = lastCall().id;
        EXPECT_EQ(delegate_.asked.back().identifier, one);
        show(message(other));
        const uint otherId = lastCall().id;
        EXPECT_NE(otherId, id);
        show(message(one, "again"));
        EXPECT_EQ(lastCall().replacesId, id) << length;
        service_->reply(id, "yes");
        settle();
        ASSERT_EQ(delegate_.responses.size(), 1u);
        EXPECT_EQ(delegate_.responses[0].requestIdentifier, one) << length;
        center_.removeDelivered({other});
        EXPECT_TRUE(waitFor([&] { return !service_->onScreen.contains(otherId); })) << length;
        EXPECT_EQ(std::count(service_->closeCalls.begin(), service_->closeCalls.end(), otherId), 1);
    }
}

TEST_F(LinuxUserNotificationCenterTest, NoIdentifierPassesForTheShortNameOfALongOne) {
    start({"body", "actions"});
    const std::string identifier(1000, 'k');
    show(message(identifier));
    show(message(LongIdentifiers::nameOf(identifier)));
    EXPECT_EQ(lastCall().replacesId, 0u);
}

TEST_F(LinuxUserNotificationCenterTest, ALongIdentifierIsKeptOnceAndNotForEver) {
    start({"body", "actions"});
    show(plain("first"));
    const auto before = bytesInUse();
    for (const char letter : {'a', 'b', 'c'}) {
        const std::string identifier(20'000'000, letter);
        show(plain(identifier));
        delegate_.asked.clear();
        EXPECT_LT(bytesInUse(), before + 45'000'000) << letter;
        center_.removeDelivered({identifier});
        settle();
    }
    EXPECT_LT(bytesInUse(), before + 25'000'000);
}

TEST_F(LinuxUserNotificationCenterTest, AReplyPanelKeepsItsLongIdentifierWhenTheNotificationHasGone) {
    start({"body", "actions"});
    const std::string identifier(1000, 'k');
    show(message(identifier));
    const uint id = lastCall().id;
    service_->invoke(id, "REPLY_ACTION");
    ASSERT_TRUE(waitFor([] { return visible<ReplyPanel>().size() == 1; }));
    service_->close(id, expired);
    settle();
    show(plain(std::string(1000, 'm')));
    ReplyPanel* const panel = visible<ReplyPanel>().front();
    type(panel->findChild<QLineEdit*>(), "yes");
    press(panel->findChild<QLineEdit*>(), Qt::Key_Return);
    ASSERT_EQ(delegate_.responses.size(), 1u);
    EXPECT_EQ(delegate_.responses[0].requestIdentifier, identifier);
}

} // namespace
} // namespace velloway::test
