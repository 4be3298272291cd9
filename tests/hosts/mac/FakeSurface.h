#pragma once

#include "hosts/mac/MacWindows.h"

namespace velloway::test {

std::unique_ptr<ContentSurface> makeFakeSurface(std::shared_ptr<WindowContent> content, MacWindows::Look look);
/// Presses where the newest view has no control.
void pressFakeBackground();

} // namespace velloway::test
