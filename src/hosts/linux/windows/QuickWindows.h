#pragma once

#include "hosts/linux/windows/ViewWindows.h"

#include <functional>

class QQmlEngine;

namespace velloway {

/// Windows of the Qt Quick views. The engine under them is made with the first window.
std::unique_ptr<ViewWindows> makeQuickWindows();

/// The same; `prepare` gets the engine before its first view.
std::unique_ptr<ViewWindows> makeQuickWindowsOver(std::function<void(QQmlEngine&)> prepare);

} // namespace velloway
