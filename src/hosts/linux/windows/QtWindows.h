#pragma once

#include "hosts/linux/windows/ViewWindows.h"

namespace velloway {

/// Windows of the Qt views, which are asked for with the first window and cost nothing before.
class QtWindows : public Windows {
public:
    /// Null when there are none now; the window is then one that never shows, and the next one asks again.
    using LoadViews = std::function<std::unique_ptr<ViewWindows>()>;

    explicit QtWindows(LoadViews loadViews);
    ~QtWindows() override;

    std::shared_ptr<Window> makeMainWindow(const MainWindowProperties& properties,
                                           std::shared_ptr<WindowContent> content,
                                           std::function<void()> onClose) override;
    std::shared_ptr<Window> makePanel(const PanelProperties& properties,
                                      std::shared_ptr<WindowContent> content) override;
    std::optional<Rect> mainScreenVisibleFrame() const override;
    void beginOpenPanel(const OpenPanelOptions& options,
                        std::function<void(std::optional<std::vector<std::filesystem::path>>)> done) override;

private:
    ViewWindows* views();

    LoadViews loadViews_;
    std::unique_ptr<ViewWindows> views_;
};

} // namespace velloway
