#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// Origin at the bottom left of the screen, y growing upwards, in points.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    bool operator==(const Rect&) const = default;
};

/// In points.
struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

/// The one ordinary window, with a title bar, that the user may close, minimise and resize. Closing keeps it.
struct MainWindowProperties {
    std::string title;
    Size size;
    Size minimumSize;
};

/// What a window shows: one of the core's view values. The views of a host know each kind and bind to it.
class WindowContent {
public:
    virtual ~WindowContent() = default;
};

/// Main thread only.
class Window {
public:
    /// Takes the window off the screen.
    virtual ~Window() = default;

    virtual bool isVisible() const = 0;
    virtual void center() = 0;
    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
    virtual void setIsVisible(bool visible) = 0;
    virtual void setFrameOrigin(double x, double y) = 0;
    /// Shows another value of the same kind in the same place.
    virtual void setContent(std::shared_ptr<WindowContent> content) = 0;
};

/// What a panel is for. Panels stand over everything else on every desktop of the user, full-screen windows
/// included, as rounded cards without a title bar that are dragged by their background. Neither kind takes the
/// keyboard away from the program that has it; a ringing call can be answered by the keyboard where the host
/// allows for both.
enum class PanelKind { ringingCall, runningCall };

struct PanelProperties {
    PanelKind kind = PanelKind::ringingCall;
    Size size;

    bool operator==(const PanelProperties&) const = default;
};

struct OpenPanelOptions {
    bool allowsMultipleSelection = false;
    bool canChooseDirectories = false;
};

/// Main thread only; so are all callbacks.
class Windows {
public:
    virtual ~Windows() = default;

    /// Builds the main window, not yet on screen. `onClose` runs each time that the user closes it; the window
    /// itself is kept.
    virtual std::shared_ptr<Window> makeMainWindow(const MainWindowProperties& properties,
                                                   std::shared_ptr<WindowContent> content,
                                                   std::function<void()> onClose) = 0;
    /// Builds a panel at (0, 0), not yet on screen.
    virtual std::shared_ptr<Window> makePanel(const PanelProperties& properties,
                                              std::shared_ptr<WindowContent> content) = 0;

    /// The usable part of the screen that the platform calls main; absent when there is none.
    virtual std::optional<Rect> mainScreenVisibleFrame() const = 0;

    /// Opens without blocking. The callback gets the chosen files in the panel's order, or nothing when the
    /// user cancelled.
    virtual void
    beginOpenPanel(const OpenPanelOptions& options,
                   std::function<void(std::optional<std::vector<std::filesystem::path>>)> done) = 0;
};

} // namespace velloway
