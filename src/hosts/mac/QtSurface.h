#pragma once

#include "hosts/mac/MacWindows.h"
#include "platform/SystemImages.h"

#include <memory>

namespace velloway {

/// Makes surfaces of the shared Qt views. The engine under them is made with the first one and goes with the
/// last one. Main thread only.
class QtSurfaces {
public:
    /// `images` is what the system has for the views. The views may ask for symbols on any thread.
    explicit QtSurfaces(std::shared_ptr<const SystemImages> images);
    ~QtSurfaces();

    std::unique_ptr<ContentSurface> make(std::shared_ptr<WindowContent> content, MacWindows::Look look);

private:
    class Engine;
    std::shared_ptr<const SystemImages> images_;
    std::weak_ptr<Engine> engine_;
};

} // namespace velloway
