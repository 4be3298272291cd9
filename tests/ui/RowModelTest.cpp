#include "bridge/RowModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>

#include <random>
#include <string>
#include <vector>

namespace velloway::test {
namespace {

struct Row {
    int id = 0;
    std::string text;

    bool operator==(const Row&) const = default;
};

using Rows = std::vector<Row>;

/// Follows a model by what it tells alone, as a list view does.
class Follower {
public:
    explicit Follower(const QAbstractItemModel& model) : model_(model) {
        using Model = QAbstractItemModel;
        QObject::connect(&model, &Model::rowsInserted, &model, [this](const QModelIndex&, int first, int last) {
            ++inserts;
            for (int row = first; row <= last; ++row) {
                rows.insert(rows.begin() + row, read(row));
            }
        });
        QObject::connect(&model, &Model::rowsRemoved, &model, [this](const QModelIndex&, int first, int last) {
            ++removes;
            rows.erase(rows.begin() + first, rows.begin() + last + 1);
        });
        QObject::connect(&model, &Model::rowsMoved, &model,
                         [this](const QModelIndex&, int from, int, const QModelIndex&, int to) {
                             ++moves;
                             Row moved = rows.at(from);
                             rows.erase(rows.begin() + from);
                             rows.insert(rows.begin() + (to > from ? to - 1 : to), moved);
                         });
        QObject::connect(&model, &Model::dataChanged, &model,
                         [this](const QModelIndex& from, const QModelIndex& to) {
                             changes += to.row() - from.row() + 1;
                             for (int row = from.row(); row <= to.row(); ++row) {
                                 rows.at(row) = read(row);
                             }
                         });
        QObject::connect(&model, &Model::modelReset, &model, [this] { ++resets; });
    }

    Rows rows;
    int inserts = 0;
    int removes = 0;
    int moves = 0;
    int changes = 0;
    int resets = 0;

    void forget() { inserts = removes = moves = changes = resets = 0; }

private:
    Row read(int row) const {
        const QModelIndex at = model_.index(row, 0);
        return {model_.data(at, Qt::UserRole).toInt(),
                model_.data(at, Qt::UserRole + 1).toString().toStdString()};
    }

    const QAbstractItemModel& model_;
};

class RowModelTest : public testing::Test {
protected:
    using Model = RowModel<Row, int>;

    Model model{nullptr,
                [](const Row& row) { return row.id; },
                {{"id", [](const Row& row) { return row.id; }},
                 {"text", [](const Row& row) { return QString::fromStdString(row.text); }}}};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    Follower follower{model};

    void assign(const Rows& rows) {
        model.assign(rows);
        ASSERT_EQ(model.rows(), rows);
        ASSERT_EQ(follower.rows, rows) << "what was told does not lead to what is there";
        ASSERT_EQ(follower.resets, 0);
    }
};

TEST_F(RowModelTest, AChangeOfOneRowTellsOfThatRowAlone) {
    assign({{1, "a"}, {2, "b"}, {3, "c"}});
    follower.forget();
    assign({{1, "a"}, {2, "B"}, {3, "c"}});
    EXPECT_EQ(follower.changes, 1);
    EXPECT_EQ(follower.inserts + follower.removes + follower.moves, 0);
}

TEST_F(RowModelTest, TheSameRowsAgainTellNothing) {
    assign({{1, "a"}, {2, "b"}});
    follower.forget();
    assign({{1, "a"}, {2, "b"}});
    EXPECT_EQ(follower.changes + follower.inserts + follower.removes + follower.moves, 0);
}

TEST_F(RowModelTest, ARowAtTheTopIsOneInsert) {
    assign({{1, "a"}, {2, "b"}});
    follower.forget();
    assign({{0, "new"}, {1, "a"}, {2, "b"}});
    EXPECT_EQ(follower.inserts, 1);
    EXPECT_EQ(follower.changes + follower.removes + follower.moves, 0);
}

TEST_F(RowModelTest, ARowThatRisesToTheTopIsMovedAndKeepsItsIdentity) {
    assign({{1, "a"}, {2, "b"}, {3, "c"}, {4, "d"}});
    const QPersistentModelIndex third = model.index(2, 0);
    follower.forget();
    assign({{3, "newer"}, {1, "a"}, {2, "b"}, {4, "d"}});
    EXPECT_EQ(follower.moves, 1);
    EXPECT_EQ(follower.changes, 1);
    EXPECT_EQ(follower.inserts + follower.removes, 0);
    EXPECT_EQ(third.row(), 0);
}

TEST_F(RowModelTest, RunsOfRowsComeAndGoTogether) {
    assign({{1, ""}, {2, ""}, {3, ""}, {4, ""}, {5, ""}});
    follower.forget();
    assign({{1, ""}, {5, ""}});
    EXPECT_EQ(follower.removes, 1);
    follower.forget();
    assign({{1, ""}, {7, ""}, {8, ""}, {9, ""}, {5, ""}});
    EXPECT_EQ(follower.inserts, 1);
}

TEST_F(RowModelTest, RowsThatShareAnIdentityAreToldApartByTheirOrder) {
    assign({{1, "a"}, {1, "b"}, {2, "c"}, {1, "d"}});
    assign({{1, "b"}, {2, "c"}, {1, "d"}});
    assign({{2, "c"}, {1, "x"}, {1, "y"}, {1, "z"}, {1, "w"}});
    assign({});
}

TEST_F(RowModelTest, RandomChangesAlwaysAddUp) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        std::mt19937 random(seed);
        const auto upTo = [&random](unsigned bound) { return static_cast<int>(random() % bound); };
        Rows rows = follower.rows;
        for (int step = upTo(6); step >= 0; --step) {
            const int size = static_cast<int>(rows.size());
            switch (upTo(6)) {
            case 0:
            case 1:
                // Few identities, so that many are shared.
                rows.insert(rows.begin() + upTo(static_cast<unsigned>(size) + 1),
                            {upTo(12), std::to_string(upTo(4))});
                break;
            case 2:
                if (size > 0) {
                    rows.erase(rows.begin() + upTo(static_cast<unsigned>(size)));
                }
                break;
            case 3:
                if (size > 0) {
                    rows[static_cast<std::size_t>(upTo(static_cast<unsigned>(size)))].text =
                        std::to_string(upTo(9));
                }
                break;
            case 4:
                std::shuffle(rows.begin(), rows.end(), random);
                break;
            default:
                if (size > 30) {
                    rows.clear();
                }
                break;
            }
        }
        SCOPED_TRACE("seed " + std::to_string(seed));
        assign(rows);
        if (HasFatalFailure()) {
            return;
        }
    }
}

} // namespace
} // namespace velloway::test
