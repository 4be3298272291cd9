#pragma once

#include "hosts/mac/MacWindows.h"

#include <memory>

namespace velloway {

/// Makes surfaces of the shared Qt views. The engine under them is made with the first one and goes with the
/// last one. Main thread only.
class QtSurfaces {
public:
    QtSurfaces();
    ~QtSurfaces();

    std::unique_ptr<ContentSurface> make(std::shared_ptr<WindowContent> content, MacWindows::Look look);

private:
    class Engine;
    std::weak_ptr<Engine> engine_;
};

} // namespace velloway
