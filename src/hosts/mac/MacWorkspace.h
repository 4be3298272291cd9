#pragma once

#include "platform/Workspace.h"

namespace velloway {

class MacWorkspace final : public Workspace {
public:
    void open(std::string_view address) override;
    void openSettings(SettingsPane pane) override;
    void activateFileViewerSelecting(const std::filesystem::path& file) override;
};

} // namespace velloway
