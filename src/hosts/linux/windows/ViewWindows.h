#pragma once

#include "platform/Windows.h"

namespace velloway {

/// Makes windows with the views in them. All that needs the views' toolkit lies behind this, so that it can
/// come into memory with the first window. Main thread only; the windows may outlive it.
class ViewWindows {
public:
    virtual ~ViewWindows() = default;

    virtual std::shared_ptr<Window> makeMainWindow(const MainWindowProperties& properties,
                                                   std::shared_ptr<WindowContent> content,
                                                   std::function<void()> onClose) = 0;
    virtual std::shared_ptr<Window> makePanel(const PanelProperties& properties,
                                              std::shared_ptr<WindowContent> content) = 0;
};

} // namespace velloway
