// What the user sees and hears of each state of each view, compared with the tables in tests/ui/tables. After
// an intended change the new tables lie in the build folder, to be looked at and copied.
#include "ui/ViewTable.h"

#include <functional>

namespace velloway::test {
namespace {

/// How the texts that can be selected look when they are, in the dark mode.
Lines selections(QQuickWindow& window) {
    const std::function<void(QQuickItem*, const char*)> tell = [&](QQuickItem* item, const char* what) {
        if (item->inherits("QQuickTextInput") || item->inherits("QQuickTextEdit")) {
            QMetaObject::invokeMethod(item, what);
        }
        for (QQuickItem* child : item->childItems()) {
            tell(child, what);
        }
    };
    tell(window.contentItem(), "selectAll");
    Lines lines = describedDark(seenOf(window));
    tell(window.contentItem(), "deselect");
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("selected"); });
    return lines;
}

TEST_P(ViewTable, IsSeenAndHeard) {
    setDark(false);
    enter();
    const std::vector<SeenPart> light = seenAtRest();
    setDark(true);
    Lines lines = described(light, seenAtRest());
    append(lines, "", heardOf(window()));
    append(lines, "", selections(window()));
    expectTable(shownState().name, lines);
}

INSTANTIATE_TEST_SUITE_P(, ViewTable, testing::ValuesIn(viewStates()), nameOf);

} // namespace
} // namespace velloway::test
