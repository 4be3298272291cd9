#include "tabs/TabTable.h"

#include <algorithm>

namespace velloway {

const TabRow* selectedRow(std::int64_t selectedTab) {
    const auto found = std::find_if(tabRows.begin(), tabRows.end(),
                                    [&](const TabRow& row) { return row.index == selectedTab; });
    return found == tabRows.end() ? nullptr : &*found;
}

int shownTab(std::int64_t selectedTab) {
    const TabRow* row = selectedRow(selectedTab);
    return row ? row->index : tabIndex::call;
}

} // namespace velloway
