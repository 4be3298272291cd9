#pragma once

#include <filesystem>
#include <string_view>

namespace velloway {

enum class SettingsPane { notifications, accessibility };

/// Main thread only. Nothing here reports a failure; a failed step is left out.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Opens an address with the program that the user has chosen for it.
    virtual void open(std::string_view address) = 0;
    /// Opens a page of the desktop's own settings, where there is one.
    virtual void openSettings(SettingsPane pane) = 0;
    virtual void activateFileViewerSelecting(const std::filesystem::path& file) = 0;
};

} // namespace velloway
