#pragma once

#include "state/Uuid.h"

#include <algorithm>
#include <vector>

namespace velloway {

/// The row with that identity, or null.
template <class Row> const Row* findRow(const std::vector<Row>& rows, const Uuid& id) {
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const Row& row) { return row.id == id; });
    return found == rows.end() ? nullptr : &*found;
}

} // namespace velloway
