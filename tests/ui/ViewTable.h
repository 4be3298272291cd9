#pragma once

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
#include <sstream>

namespace velloway::test {

using Lines = std::vector<std::string>;

inline void setDark(bool isDark) {
    QPalette palette;
    palette.setColor(QPalette::Window, isDark ? QColor(30, 30, 32) : QColor(240, 240, 240));
    QApplication::setPalette(palette);
    processPending();
}

/// The lines of `one` that are not in `other`, in their order.
inline Lines without(const Lines& one, const Lines& other) {
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

inline void append(Lines& to, const char* before, const Lines& lines) {
    for (const std::string& line : lines) {
        to.push_back(before + line);
    }
}

inline void expectTable(const std::string& name, const Lines& actual) {
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

inline std::string nameOf(const testing::TestParamInfo<ViewState>& info) {
    return info.param.name;
}

} // namespace velloway::test
