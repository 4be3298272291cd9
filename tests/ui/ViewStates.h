#pragma once

#include "ui/ViewHarness.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace velloway::test {

/// A state of the main window or of a panel, as a table in tests/ui/tables describes it.
struct ViewState {
    std::string name;
    /// The tab that is shown, or none for a panel.
    int tab = -1;
    /// Brings the program into the state while the tab is shown; done twice, it is as done once.
    std::function<void(ViewHarness&)> enter;
    QSize size{850, 550};
    /// Whether every control of the state is pressed and every key is tried on it.
    bool isPressed = false;
};

const std::vector<ViewState>& viewStates();

/// States with more than fits into their window.
std::vector<ViewState> scrolledStates();

/// For the messages of failed tests.
inline void PrintTo(const ViewState& state, std::ostream* out) {
    *out << state.name;
}

} // namespace velloway::test
