#pragma once

#include "hosts/mac/MacDelegate.h"
#include "platform/Windows.h"

namespace velloway {

/// One view of the shared user interface in the form of a native view.
class ContentSurface {
public:
    virtual ~ContentSurface() = default;

    /// The `NSView`, which goes with this object.
    virtual void* nativeView() = 0;
    virtual void setContent(std::shared_ptr<WindowContent> content) = 0;
    /// Whether to draw.
    virtual void setShown(bool isShown) = 0;
    /// Runs on a press that no control of the view takes.
    virtual void setBackgroundPressed(std::function<void()> pressed) = 0;
};

/// Windows and panels of AppKit with the shared views in them. They are made with their styles and belong to no
/// toolkit, so nothing can set their properties back.
class MacWindows final : public Windows {
public:
    enum class Look { opaque, translucent };
    using MakeSurface =
        std::function<std::unique_ptr<ContentSurface>(std::shared_ptr<WindowContent>, Look look)>;

    MacWindows(MacDelegate& delegate, MakeSurface makeSurface);

    /// There can be one: the delegate of the process reports its closing.
    std::shared_ptr<Window> makeMainWindow(const MainWindowProperties& properties,
                                           std::shared_ptr<WindowContent> content,
                                           std::function<void()> onClose) override;
    std::shared_ptr<Window> makePanel(const PanelProperties& properties,
                                      std::shared_ptr<WindowContent> content) override;
    std::optional<Rect> mainScreenVisibleFrame() const override;
    void beginOpenPanel(const OpenPanelOptions& options,
                        std::function<void(std::optional<std::vector<std::filesystem::path>>)> done) override;

private:
    MacDelegate& delegate_;
    MakeSurface makeSurface_;
};

} // namespace velloway
