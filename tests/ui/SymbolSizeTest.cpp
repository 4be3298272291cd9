#include "ui/ViewTest.h"

namespace velloway::test {
namespace {

/// Runs at whatever scale the screen has; the build runs it at a scale of 1 and of 2.
class SymbolSizeTest : public ViewTest {
protected:
    /// Counts the symbols in sight, and fails for one that is not drawn at the size that the view asks for.
    static int check(QQuickItem* item) {
        int symbols = 0;
        if (item->isVisible() && item->property("tint").isValid() && item->property("sourceSize").isValid()) {
            ++symbols;
            const double size = item->property("size").toDouble();
            const std::string name = item->property("name").toString().toStdString();
            EXPECT_EQ(item->width(), size) << name;
            EXPECT_EQ(item->height(), size) << name;
        }
        for (QQuickItem* child : item->childItems()) {
            symbols += check(child);
        }
        return symbols;
    }
};

TEST_F(SymbolSizeTest, ASymbolHasItsSizeAtEveryScale) {
    on.accessibility.trusted = false;
    open(0);
    program.historyStore().batteryLevel.set(50);
    settle();
    for (const TabRow& tab : tabRows) {
        open(tab.index);
        EXPECT_GT(check(openWindow().contentItem()), 8) << tab.title;
    }
    program.historyStore().connectedRemoteIP.set(std::nullopt);
    open(0);
    check(openWindow().contentItem());
}

} // namespace
} // namespace velloway::test
