#pragma once

#include "hosts/linux/input/LinuxInput.h"
#include "platform/Workspace.h"

namespace velloway {

/// A workspace whose settings for Accessibility are the question of the desktop portal, where there is one:
/// that is where this permission lives, and a user who has refused or withdrawn it can give it again.
class PermissionWorkspace : public Workspace {
public:
    /// Both must outlive this object.
    PermissionWorkspace(Workspace& workspace, LinuxInput& input) : workspace_(workspace), input_(input) {}

    void open(std::string_view address) override { workspace_.open(address); }
    void openSettings(SettingsPane pane) override {
        if (pane == SettingsPane::accessibility && input_.canAsk()) {
            input_.isTrustedWithPrompt();
        } else {
            workspace_.openSettings(pane);
        }
    }
    void activateFileViewerSelecting(const std::filesystem::path& file) override {
        workspace_.activateFileViewerSelecting(file);
    }

private:
    Workspace& workspace_;
    LinuxInput& input_;
};

} // namespace velloway
