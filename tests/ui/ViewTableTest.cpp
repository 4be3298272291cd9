// What the user sees and hears of each state of each view, and what each control does, compared with the tables
// in tests/ui/tables. After an intended change the new tables lie in the build folder, to be looked at and
// copied.
#include "ui/SeenView.h"
#include "ui/ViewStates.h"
#include "ui/ViewTest.h"

#include <QAccessible>
#include <QApplication>
#include <QCursor>
#include <QPalette>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

namespace velloway::test {
namespace {

using Lines = std::vector<std::string>;

void setDark(bool isDark) {
    QPalette palette;
    palette.setColor(QPalette::Window, isDark ? QColor(30, 30, 32) : QColor(240, 240, 240));
    QApplication::setPalette(palette);
    processPending();
}

/// The lines of `one` that are not in `other`, in their order.
Lines without(const Lines& one, const Lines& other) {
    std::map<std::string, int> count;
    for (const std::string& line : other) {
        ++count[line];
    }
    Lines left;
    for (const std::string& line : one) {
        if (count[line]-- <= 0) {
            left.push_back(line);
        }
    }
    return left;
}

void append(Lines& to, const char* before, const Lines& lines) {
    for (const std::string& line : lines) {
        to.push_back(before + line);
    }
}

void expectTable(const std::string& name, const Lines& actual) {
    Lines expected;
    std::ifstream in(std::filesystem::path(VELLOWAY_VIEW_TABLES) / (name + ".txt"));
    for (std::string line; std::getline(in, line);) {
        expected.push_back(line);
    }
    if (actual == expected) {
        return;
    }
    const std::filesystem::path folder = VELLOWAY_NEW_VIEW_TABLES;
    std::filesystem::create_directories(folder);
    std::ofstream out(folder / (name + ".txt"));
    for (const std::string& line : actual) {
        out << line << '\n';
    }
    std::ostringstream difference;
    int shown = 0;
    for (const auto& [mark, lines] :
         {std::pair("- ", without(expected, actual)), std::pair("+ ", without(actual, expected))}) {
        for (const std::string& line : lines) {
            difference << (++shown <= 30 ? mark + line + '\n' : "");
        }
    }
    ADD_FAILURE() << name << " differs from its table, " << shown << " lines:\n"
                  << (shown == 0 ? "the order of the lines\n" : difference.str()) << "The new one is in "
                  << folder;
}

class ViewTable : public ViewTest, public testing::WithParamInterface<ViewState> {
protected:
    ViewTable() {
        on.host.interfaces = {{.name = "en0", .flags = 0x41, .addressFamily = 2, .numericAddress = "10.0.0.5"}};
        QAccessible::setActive(true);
    }
    ~ViewTable() override { setDark(false); }

    const ViewState& shownState() const { return GetParam(); }
    bool isPanel() const { return shownState().tab < 0; }

    ContentView& window() { return isPanel() ? drawnPanel() : openWindow(); }

    void enter() {
        if (isPanel()) {
            shownState().enter(*this);
            drawnPanel();
            return;
        }
        ContentView& main = open(shownState().tab);
        main.resize(shownState().size);
        require("the size", [&] { return main.size() == shownState().size; });
        // The pointer of the desktop must not stand on what is looked at.
        QCursor::setPos(main.screen()->geometry().bottomRight());
        QTest::mouseMove(&main, {2, 2});
        settle();
        shownState().enter(*this);
        settle();
    }

    /// Looks in a row that show the same. Only the switch of the settings may pause as it moves.
    static constexpr int restTurns = 4;
    static constexpr int switchTurns = 40;

    /// Waits until nothing moves any more.
    std::vector<SeenPart> seenAtRest() {
        settle();
        std::vector<SeenPart> before = seenOf(window());
        int calm = 0;
        require("a view at rest", [&] {
            std::vector<SeenPart> seen = seenOf(window());
            calm = seen == before ? calm + 1 : 0;
            before = std::move(seen);
            return calm >= (shownState().tab == tabIndex::settings ? switchTurns : restTurns);
        });
        return before;
    }
};

std::string nameOf(const testing::TestParamInfo<ViewState>& info) {
    return info.param.name;
}

TEST_P(ViewTable, IsSeenAndHeard) {
    setDark(false);
    enter();
    const std::vector<SeenPart> light = seenAtRest();
    setDark(true);
    Lines lines = described(light, seenAtRest());
    append(lines, "", heardOf(window()));
    expectTable(shownState().name, lines);
}

INSTANTIATE_TEST_SUITE_P(, ViewTable, testing::ValuesIn(viewStates()), nameOf);

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
