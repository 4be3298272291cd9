#include "tabs/Computed.h"
#include "fakes/FakeUserDefaults.h"
#include "state/Observable.h"
#include "tabs/FindRow.h"
#include "tabs/StoredField.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velloway::test {
namespace {

TEST(Computed, IsWorkedOutAtEachReadingAndFollowsEverySource) {
    Observable<int> one{1};
    Observable<int> two{2};
    const Computed<int> sum([&] { return one.get() + two.get(); }, one, two);
    int changes = 0;
    Subscription seen = sum.observe([&] { ++changes; });
    EXPECT_EQ(sum.get(), 3);
    EXPECT_EQ(changes, 0);
    one.set(5);
    two.set(7);
    EXPECT_EQ(sum.get(), 12);
    EXPECT_EQ(changes, 2);
    seen.reset();
    one.set(6);
    two.set(8);
    EXPECT_EQ(changes, 2) << "who has left is not called";
}

TEST(StoredField, StartsWithWhatIsStoredOrItsDefault) {
    FakeUserDefaults defaults;
    EXPECT_EQ(StoredField(defaults, "key", 7).get(), 7);
    defaults.setInteger("key", 0);
    EXPECT_EQ(StoredField(defaults, "key", 7).get(), 0);
    EXPECT_EQ(StoredField(defaults, "other", 7).get(), 7);
}

TEST(StoredField, WritesItsChangesAndFollowsThoseOfOthers) {
    FakeUserDefaults defaults;
    StoredField field(defaults, "key", 7);
    EXPECT_FALSE(defaults.has("key")) << "the default is not stored";
    std::vector<std::int64_t> values;
    const auto seen = field.observe([&](std::int64_t value) { values.push_back(value); });
    std::vector<std::int64_t> written;
    const auto writes = defaults.observe("key", [&](std::int64_t value) { written.push_back(value); });
    field.set(9);
    EXPECT_EQ(defaults.integer("key"), 9);
    defaults.setInteger("key", 11);
    EXPECT_EQ(field.get(), 11);
    defaults.setInteger("key", 11);
    EXPECT_EQ(values, (std::vector<std::int64_t>{9, 11})) << "nothing has changed the last time";
    EXPECT_EQ(written, (std::vector<std::int64_t>{9, 11, 11})) << "what comes from there is not written back";
}

TEST(FindRow, FindsTheRowWithThatIdentity) {
    struct Row {
        Uuid id = Uuid::random();
    };
    const std::vector<Row> rows(3);
    EXPECT_EQ(findRow(rows, rows[1].id), &rows[1]);
    EXPECT_EQ(findRow(rows, Uuid::random()), nullptr);
}

} // namespace
} // namespace velloway::test
