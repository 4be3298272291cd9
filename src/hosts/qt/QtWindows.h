#pragma once

#include "platform/Windows.h"

#include <memory>

namespace velloway {

/// Windows of the Qt views. The engine under them is made with the first window, and costs nothing before.
class QtWindows : public Windows {
public:
    QtWindows();
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
    class Engine;
    const std::shared_ptr<Engine>& engine();

    std::shared_ptr<Engine> engine_;
};

} // namespace velloway
