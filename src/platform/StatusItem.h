#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

struct MenuItem {
    enum class Action { none, call, terminate };

    std::string title;
    /// A plain character, with the platform's default modifier for menus; empty for none.
    std::string keyEquivalent;
    int tag = 0;
    bool isEnabled = true;
    bool isSeparator = false;
    Action action = Action::none;
    /// For `Action::call`: the name of the operation, by which a host may call it from outside.
    std::string operation;
    std::function<void()> onChosen;
};

/// An image for the status bar. The named asset comes at its own size, the symbol at `pointSize`.
struct StatusImage {
    enum class Kind { asset, symbol };
    Kind kind = Kind::asset;
    std::string name;
    double pointSize = 0;
    bool isTemplate = false;
};

/// The item in the status bar (or tray) with its menu. Main thread only.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// Puts an item of variable length into the status bar. Called once.
    virtual void create() = 0;
    virtual bool hasButton() const = 0;
    virtual bool hasImage(const StatusImage& image) const = 0;
    virtual void setImage(const StatusImage& image) = 0;
    virtual void setMenu(const std::vector<MenuItem>& items) = 0;
    /// Changes the first item with this tag. Does nothing when there is no menu or no such item.
    virtual void setItemTitle(int tag, const std::string& title) = 0;
};

} // namespace velloway
