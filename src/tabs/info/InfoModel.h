#pragma once

#include "tabs/TabDependencies.h"
#include "tabs/info/ProductOwner.h"

namespace velloway {

/// The page about the program; all that it shows is fixed. Main thread only.
class InfoModel {
public:
    explicit InfoModel(const TabDependencies& dependencies) : workspace_(dependencies.workspace) {}

    void openProfile() { workspace_.open(productOwner::profileLink); }

private:
    Workspace& workspace_;
};

} // namespace velloway
