#include "tabs/ContactsManager.h"

#include <gtest/gtest.h>

namespace velloway::test {
namespace {

TEST(ContactsManagerTest, AccessIsRefusedAtOnceAndWithoutAnAlert) {
    for (const bool showDeniedAlert : {false, true}) {
        std::vector<bool> answers;
        ContactsManager::shared().requestAccess(showDeniedAlert,
                                                [&](bool granted) { answers.push_back(granted); });
        EXPECT_EQ(answers, std::vector<bool>{false});
    }
}

TEST(ContactsManagerTest, AccessCanBeAskedForWithoutACompletion) {
    EXPECT_NO_THROW(ContactsManager::shared().requestAccess(true));
}

TEST(ContactsManagerTest, NoNameIsEverCached) {
    ContactsManager manager;
    manager.nameCache.set({{"1", "Anna"}});
    EXPECT_EQ(manager.cachedName("1"), std::nullopt);
}

TEST(ContactsManagerTest, AChangeOfTheCacheNotifies) {
    ContactsManager manager;
    int changes = 0;
    const auto observer = manager.nameCache.observe([&](const auto&) { ++changes; });
    manager.nameCache.set({});
    EXPECT_EQ(changes, 1);
}

TEST(ContactsManagerTest, SearchFindsNothing) {
    EXPECT_TRUE(ContactsManager::shared().search("Anna").empty());
}

TEST(ContactsManagerTest, ThereIsOneSharedInstance) {
    EXPECT_EQ(&ContactsManager::shared(), &ContactsManager::shared());
}

TEST(ContactsManagerTest, DigitsOnlyKeepsTheDigitsOfAnyScript) {
    EXPECT_EQ(ContactsManager::digitsOnly("+44 77-00"), "447700");
    EXPECT_EQ(ContactsManager::digitsOnly("abc"), "");
    EXPECT_EQ(ContactsManager::digitsOnly("+٤٤ 1"), "٤٤1");
    EXPECT_EQ(ContactsManager::digitsOnly("+44 7700 900123"), "447700900123");
}

TEST(ContactsManagerTest, EachMatchHasAnIdentityOfItsOwn) {
    const ContactMatch one("Anna", "+44 77", "4477");
    const ContactMatch other("Anna", "+44 77", "4477");
    EXPECT_NE(one.id, other.id);
    EXPECT_EQ(one.name, "Anna");
    EXPECT_EQ(one.phone, "+44 77");
    EXPECT_EQ(one.phoneRaw, "4477");
}

} // namespace
} // namespace velloway::test
