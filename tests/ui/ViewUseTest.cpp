// What each control of each state shows and does under the pointer, under the keyboard and for a screen reader,
// compared with the tables in tests/ui/tables.
#include "ui/ViewTable.h"

#include <regex>

namespace velloway::test {
namespace {

/// Presses and keys, in the dark mode.
class ViewUse : public ViewTable {
protected:
    void start() {
        setDark(true);
        enter();
        base_ = describedDark(seenAtRest());
        takeEffects();
    }

    /// Everything as at the beginning, the tab made anew.
    void restore() {
        program.historyStore().incomingCallInfo.set(std::nullopt);
        program.notifications().post(AppNotification::callDurationUpdated, std::int64_t{-1});
        on.accessibility.trusted = true;
        state().columnVisibility.set(ColumnVisibility::all);
        const int other = shownState().tab == tabIndex::info ? tabIndex::remote : tabIndex::info;
        state().selectedTab.set(other);
        settle();
        enter();
        takeEffects();
    }

    Lines takeEffects() {
        on.drain();
        Lines effects = takeSent();
        append(effects, "", on.journal.take());
        append(effects, "opens ", std::exchange(on.workspace.opened, {}));
        for (const auto& file : std::exchange(on.workspace.revealed, {})) {
            effects.push_back("reveals " + file.string());
        }
        for (std::size_t i = 0; i < std::exchange(on.workspace.panes, {}).size(); ++i) {
            effects.emplace_back("opens settings");
        }
        // Identities are made by chance.
        static const std::regex identity("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
        for (std::string& effect : effects) {
            effect = std::regex_replace(std::regex_replace(effect, identity, "ID"), std::regex("\n"), "\\n");
        }
        return effects;
    }

    struct Control {
        QQuickItem* item;
        QAccessible::Role role;
        std::string name;
    };
    static std::string nameOf(const QAccessibleInterface& part) {
        return part.text(QAccessible::Name).left(60).replace('\n', ' ').toStdString();
    }
    /// The visible controls beside the sidebar.
    std::vector<Control> controls() {
        std::vector<Control> found;
        const std::function<void(QAccessibleInterface*)> visit = [&](QAccessibleInterface* part) {
            if (!part || !part->isValid() || part->state().invisible) {
                return;
            }
            auto* item = qobject_cast<QQuickItem*>(part->object());
            const std::string name = nameOf(*part);
            if (item && name == "Tabs") {
                return;
            }
            if (item && isUsed(*part) && isInSight(*item)) {
                found.push_back({item, part->role(), name});
            }
            for (int i = 0; i < part->childCount(); ++i) {
                visit(part->child(i));
            }
        };
        visit(QAccessible::queryAccessibleInterface(&openWindow()));
        // A list keeps its rows in the order in which it made them, which changes with their reuse.
        const auto isRow = [](const Control& control) { return control.role == QAccessible::ListItem; };
        for (auto first = std::find_if(found.begin(), found.end(), isRow); first != found.end();) {
            const auto last = std::find_if_not(first, found.end(), isRow);
            std::stable_sort(first, last, [](const Control& a, const Control& b) {
                return a.item->mapToScene({}).y() < b.item->mapToScene({}).y();
            });
            first = std::find_if(last, found.end(), isRow);
        }
        return found;
    }

    static bool isUsed(const QAccessibleInterface& part) {
        switch (part.role()) {
        case QAccessible::Button:
        case QAccessible::Link:
        case QAccessible::CheckBox:
        case QAccessible::RadioButton:
        case QAccessible::ComboBox:
        case QAccessible::ListItem:
        case QAccessible::EditableText:
            return true;
        default:
            return false;
        }
    }
    static bool isInSight(const QQuickItem& item) {
        const QPoint centre = item.mapToScene({item.width() / 2, item.height() / 2}).toPoint();
        return isShown(&item) && QRect(QPoint(), item.window()->size()).contains(centre);
    }

    void appendChange(Lines& to, const Lines& before, const Lines& after) {
        append(to, "  - ", without(before, after));
        append(to, "  + ", without(after, before));
    }

    Lines lookAgain() { return describedDark(seenAtRest()); }

    std::string keyboard() {
        auto* item = openWindow().activeFocusItem();
        QAccessibleInterface* part = item ? QAccessible::queryAccessibleInterface(item) : nullptr;
        return part ? nameOf(*part) : "";
    }

    void appendEffects(Lines& to) {
        append(to, "  does ", takeEffects());
        to.push_back("  shows " + std::to_string(state().selectedTab.get()) + (panel() ? " and a panel" : "") +
                     ", keyboard on \"" + keyboard() + '"');
    }

    Lines base_;
};

TEST_P(ViewUse, EveryControlShowsThePointerAndDoesItsWork) {
    start();
    Lines lines;
    const std::size_t count = controls().size();
    for (std::size_t i = 0; i < count; ++i) {
        const Control control = controls().at(i);
        if (control.name.starts_with("Send Files")) {
            continue; // Opens a window of the desktop.
        }
        const QPoint centre =
            control.item->mapToScene({control.item->width() / 2, control.item->height() / 2}).toPoint();
        lines.push_back("pointer on " + control.name);
        QTest::mouseMove(&openWindow(), centre);
        const Lines hovered = lookAgain();
        appendChange(lines, base_, hovered);
        lines.push_back("press on " + control.name);
        QTest::mousePress(&openWindow(), Qt::LeftButton, {}, centre);
        appendChange(lines, hovered, lookAgain());
        lines.push_back("release on " + control.name);
        QTest::mouseRelease(&openWindow(), Qt::LeftButton, {}, centre);
        appendChange(lines, hovered, lookAgain());
        appendEffects(lines);
        restore();
        if (auto* spoken = QAccessible::queryAccessibleInterface(controls().at(i).item)->actionInterface()) {
            lines.push_back("screen reader presses " + control.name);
            spoken->doAction(QAccessibleActionInterface::pressAction());
            appendChange(lines, base_, lookAgain());
            appendEffects(lines);
            restore();
        }
    }
    expectTable(shownState().name + "_pointer", lines);
}

TEST_P(ViewUse, EveryControlShowsTheKeyboardAndAnswersItsKeys) {
    start();
    Lines lines;
    const std::size_t count = controls().size();
    for (std::size_t i = 0; i < count; ++i) {
        const Control first = controls().at(i);
        const bool isButton = first.role != QAccessible::EditableText && first.role != QAccessible::ListItem;
        const std::vector<Qt::Key> keys =
            isButton ? std::vector{Qt::Key_Return, Qt::Key_Space}
                     : std::vector{Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_Down};
        for (const Qt::Key pressed : keys) {
            const Control control = controls().at(i);
            if (control.name.starts_with("Send Files")) {
                continue;
            }
            control.item->forceActiveFocus(Qt::TabFocusReason);
            const Lines focused = lookAgain();
            if (pressed == keys.front()) {
                lines.push_back("keyboard on " + control.name);
                appendChange(lines, base_, focused);
            }
            lines.push_back("key " + QKeySequence(pressed).toString().toStdString() + " on " + control.name);
            QTest::keyClick(&openWindow(), pressed);
            appendChange(lines, focused, lookAgain());
            appendEffects(lines);
            restore();
        }
    }
    expectTable(shownState().name + "_keys", lines);
}

TEST_P(ViewUse, TabGoesFromControlToControl) {
    start();
    Lines lines{"keyboard on \"" + keyboard() + '"'};
    for (bool isNew = true; isNew;) {
        QTest::keyClick(&openWindow(), Qt::Key_Tab);
        settle();
        const std::string line = "keyboard on \"" + keyboard() + '"';
        isNew = std::find(lines.begin(), lines.end(), line) == lines.end();
        lines.push_back(line);
    }
    expectTable(shownState().name + "_order", lines);
}

std::vector<ViewState> pressedStates() {
    std::vector<ViewState> states;
    std::copy_if(viewStates().begin(), viewStates().end(), std::back_inserter(states),
                 [](const ViewState& state) { return state.isPressed; });
    return states;
}

INSTANTIATE_TEST_SUITE_P(, ViewUse, testing::ValuesIn(pressedStates()), nameOf);

} // namespace
} // namespace velloway::test
