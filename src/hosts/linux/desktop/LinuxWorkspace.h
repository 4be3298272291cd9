#pragma once

#include "platform/Workspace.h"

#include <QObject>

namespace velloway {

/// The desktop's own services: the portal or `xdg-open` for addresses, the file manager for files, the settings
/// program of the desktop for settings. Nothing here waits for an answer, and no shell sees an address.
class LinuxWorkspace : public QObject, public Workspace {
public:
    void open(std::string_view address) override;
    void openSettings(SettingsPane pane) override;
    void activateFileViewerSelecting(const std::filesystem::path& file) override;
};

} // namespace velloway
