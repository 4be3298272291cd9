// Where the keys that scroll take every list and page, and whether a page follows the keyboard, compared with
// the tables in tests/ui/tables.
#include "ui/ViewTable.h"

#include <cmath>
#include <functional>

namespace velloway::test {
namespace {

class ViewScroll : public ViewTable {
protected:
    ViewScroll() { open(shownState().tab).setMinimumSize({100, 100}); }

    static std::vector<QQuickItem*> itemsOf(const char* type) {
        std::vector<QQuickItem*> found;
        const std::function<void(QQuickItem*)> visit = [&](QQuickItem* item) {
            if (isShown(item) && item->inherits(type)) {
                found.push_back(item);
            }
            for (QQuickItem* child : item->childItems()) {
                visit(child);
            }
        };
        visit(openWindow().contentItem());
        return found;
    }

    static std::string nameOf(QQuickItem& item) {
        const auto* part = QAccessible::queryAccessibleInterface(&item);
        return part ? part->text(QAccessible::Name).left(40).replace('\n', ' ').toStdString() : "(no name)";
    }

    static std::string place(const QQuickItem& scroller) {
        const double at = scroller.property("contentY").toDouble() - scroller.property("originY").toDouble();
        const QVariant row = scroller.property("currentIndex");
        return "at " + std::to_string(std::lround(at)) +
               (row.isValid() ? " row " + row.toString().toStdString() : "") +
               (scroller.property("atYBeginning").toBool() ? " top" : "") +
               (scroller.property("atYEnd").toBool() ? " bottom" : "");
    }

    /// The line of a key that `scroller` gets.
    std::string press(QQuickItem& scroller, Qt::Key key, Qt::KeyboardModifiers modifiers) {
        scroller.forceActiveFocus(Qt::TabFocusReason);
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QGuiApplication::sendEvent(&openWindow(), &event);
        settle();
        return QKeySequence(key | modifiers).toString().toStdString() +
               (event.isAccepted() ? " " : " is not used, ") + place(scroller) +
               (scroller.hasActiveFocus() || scroller.property("activeFocus").toBool() ? ""
                                                                                       : ", keyboard gone");
    }
};

TEST_P(ViewScroll, TheKeysScroll) {
    enter();
    Lines lines;
    for (QQuickItem* scroller : itemsOf("QQuickFlickable")) {
        lines.push_back("keyboard on " + nameOf(*scroller));
        for (const Qt::Key key :
             {Qt::Key_Home, Qt::Key_Up, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown,
              Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_End, Qt::Key_Down, Qt::Key_Up, Qt::Key_PageUp,
              Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_F5}) {
            lines.push_back(press(*scroller, key, {}));
        }
        lines.push_back(press(*scroller, Qt::Key_End, Qt::KeypadModifier));
        lines.push_back(press(*scroller, Qt::Key_Home, Qt::ControlModifier));
    }
    expectTable(shownState().name + "_scrolling", lines);
}

TEST_P(ViewScroll, ThePageFollowsTheKeyboard) {
    enter();
    const auto scrollers = itemsOf("QQuickFlickable");
    const auto places = [&] {
        std::string all;
        for (const QQuickItem* scroller : scrollers) {
            all += ' ' + place(*scroller);
        }
        return all;
    };
    QTest::keyClick(&openWindow(), Qt::Key_Home);
    settle();
    Lines lines{places()};
    std::vector<QQuickItem*> stops;
    for (const bool isForward : {true, false}) {
        for (int step = 0; step < 12; ++step) {
            QQuickItem* from = openWindow().activeFocusItem();
            QQuickItem* to = from ? from->nextItemInFocusChain(isForward) : nullptr;
            while (to && to != from && !(to->activeFocusOnTab() && isShown(to) && to->isEnabled())) {
                to = to->nextItemInFocusChain(isForward);
            }
            if (!to || to == from) {
                break;
            }
            to->forceActiveFocus(isForward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            settle();
            lines.push_back(nameOf(*to) + places());
        }
    }
    expectTable(shownState().name + "_following", lines);
}

INSTANTIATE_TEST_SUITE_P(, ViewScroll, testing::ValuesIn(scrolledStates()), test::nameOf);

} // namespace
} // namespace velloway::test
