#pragma once

#include "bridge/Convert.h"

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>
#include <QVariant>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <unordered_map>
#include <utility>
#include <vector>

namespace velloway {

/// Shows a list of values to QML and reports a new list as the exact inserts, removes, moves and changes, so
/// that a row keeps its delegate for as long as its identity lasts. Main thread only.
///
/// Several rows may share an identity; they are then told apart by their order.
template <class Row, class Key> class RowModel : public QAbstractListModel {
public:
    /// What a delegate names: a member of the row, or something worked out from it when it is asked for.
    struct Role {
        template <class Value> Role(const char* role, Value of)
            : name(role), value([of](const Row& row) { return toVariant(std::invoke(of, row)); }) {}

        QByteArray name;
        std::function<QVariant(const Row&)> value;
    };

    /// Every delegate also gets `bridge`, the owner of the model, to which its row belongs.
    RowModel(QObject* bridge, std::function<Key(const Row&)> identity, std::vector<Role> roles)
        : QAbstractListModel(bridge), identity_(std::move(identity)), roles_(std::move(roles)) {}

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        const int position = role - Qt::UserRole;
        if (!index.isValid() || position < 0 || position > bridgeRole()) {
            return {};
        }
        if (position == bridgeRole()) {
            return QVariant::fromValue(QObject::parent());
        }
        return roles_[static_cast<std::size_t>(position)].value(rows_[static_cast<std::size_t>(index.row())]);
    }

    QHash<int, QByteArray> roleNames() const override {
        QHash<int, QByteArray> names;
        for (std::size_t i = 0; i < roles_.size(); ++i) {
            names.insert(Qt::UserRole + static_cast<int>(i), roles_[i].name);
        }
        names.insert(Qt::UserRole + bridgeRole(), "bridge");
        return names;
    }

    const std::vector<Row>& rows() const { return rows_; }

    /// The first row of that identity, or null.
    const Row* find(const Key& key) const {
        const auto found =
            std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) { return identity_(row) == key; });
        return found == rows_.end() ? nullptr : &*found;
    }

    void assign(std::vector<Row> next) {
        // Most changes leave a long head and a long tail as they are.
        std::size_t head = 0;
        while (head < rows_.size() && head < next.size() && sameKey(rows_[head], next[head])) {
            update(head, next[head]);
            ++head;
        }
        std::size_t tail = 0;
        while (tail < rows_.size() - head && tail < next.size() - head &&
               sameKey(rows_[rows_.size() - 1 - tail], next[next.size() - 1 - tail])) {
            update(rows_.size() - 1 - tail, next[next.size() - 1 - tail]);
            ++tail;
        }
        removeUnwanted(head, rows_.size() - tail, next, next.size() - tail);
        placeWanted(head, next, next.size() - tail, tail);
    }

private:
    int bridgeRole() const { return static_cast<int>(roles_.size()); }

    bool sameKey(const Row& one, const Row& other) const { return identity_(one) == identity_(other); }

    void update(std::size_t at, Row& next) {
        if (!(rows_[at] == next)) {
            rows_[at] = std::move(next);
            const QModelIndex changed = index(static_cast<int>(at));
            emit dataChanged(changed, changed);
        }
    }

    /// How often the identity of each row occurs in `next`. Where one list is long and the other short, such as
    /// when another chat is opened, only the short one is put into a table.
    std::unordered_map<Key, int> countWanted(std::size_t first, std::size_t end, const std::vector<Row>& next,
                                             std::size_t nextEnd) const {
        std::unordered_map<Key, int> wanted;
        if (nextEnd < end) {
            for (std::size_t i = first; i < nextEnd; ++i) {
                ++wanted[identity_(next[i])];
            }
            return wanted;
        }
        for (std::size_t i = first; i < end; ++i) {
            wanted.try_emplace(identity_(rows_[i]), 0);
        }
        for (std::size_t i = first; i < nextEnd && !wanted.empty(); ++i) {
            if (const auto found = wanted.find(identity_(next[i])); found != wanted.end()) {
                ++found->second;
            }
        }
        return wanted;
    }

    void removeUnwanted(std::size_t first, std::size_t end, const std::vector<Row>& next, std::size_t nextEnd) {
        std::unordered_map<Key, int> wanted = countWanted(first, end, next, nextEnd);
        std::vector<bool> keep(end - first);
        for (std::size_t i = first; i < end; ++i) {
            auto found = wanted.find(identity_(rows_[i]));
            keep[i - first] = found != wanted.end() && found->second-- > 0;
        }
        for (std::size_t stop = end; stop > first;) {
            if (keep[stop - 1 - first]) {
                --stop;
                continue;
            }
            std::size_t start = stop - 1;
            while (start > first && !keep[start - 1 - first]) {
                --start;
            }
            beginRemoveRows({}, static_cast<int>(start), static_cast<int>(stop) - 1);
            rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(start),
                        rows_.begin() + static_cast<std::ptrdiff_t>(stop));
            endRemoveRows();
            stop = start;
        }
    }

    /// Every row between the equal head and tail is wanted by now; what is missing is inserted in runs, what
    /// stands elsewhere is moved.
    void placeWanted(std::size_t first, std::vector<Row>& next, std::size_t nextEnd, std::size_t tail) {
        std::unordered_map<Key, int> present;
        for (std::size_t i = first; i < rows_.size() - tail; ++i) {
            ++present[identity_(rows_[i])];
        }
        const auto isPresent = [&present](const Key& key) {
            const auto found = present.find(key);
            return found != present.end() && found->second > 0;
        };
        std::size_t i = first;
        while (i < nextEnd) {
            const Key key = identity_(next[i]);
            if (isPresent(key)) {
                bringUp(i, key);
                --present[key];
                update(i, next[i]);
                ++i;
                continue;
            }
            std::size_t stop = i + 1;
            while (stop < nextEnd && !isPresent(identity_(next[stop]))) {
                ++stop;
            }
            beginInsertRows({}, static_cast<int>(i), static_cast<int>(stop) - 1);
            rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(i),
                         std::make_move_iterator(next.begin() + static_cast<std::ptrdiff_t>(i)),
                         std::make_move_iterator(next.begin() + static_cast<std::ptrdiff_t>(stop)));
            endInsertRows();
            i = stop;
        }
    }

    void bringUp(std::size_t to, const Key& key) {
        std::size_t from = to;
        while (identity_(rows_[from]) != key) {
            ++from;
        }
        if (from == to) {
            return;
        }
        beginMoveRows({}, static_cast<int>(from), static_cast<int>(from), {}, static_cast<int>(to));
        std::rotate(rows_.begin() + static_cast<std::ptrdiff_t>(to),
                    rows_.begin() + static_cast<std::ptrdiff_t>(from),
                    rows_.begin() + static_cast<std::ptrdiff_t>(from) + 1);
        endMoveRows();
    }

    std::function<Key(const Row&)> identity_;
    std::vector<Role> roles_;
    std::vector<Row> rows_;
};

} // namespace velloway
