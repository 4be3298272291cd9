#pragma once

#include "hosts/mac/MacDelegate.h"
#include "platform/StatusItem.h"

#include <memory>

namespace velloway {

/// An item of the system's status bar. Its menu items call `delegate` by selector.
class MacStatusItem final : public StatusItem {
public:
    explicit MacStatusItem(MacDelegate& delegate);
    ~MacStatusItem() override;

    void create() override;
    bool hasButton() const override;
    bool hasImage(const StatusImage& image) const override;
    void setImage(const StatusImage& image) override;
    /// Ends the process when there is no status item.
    void setMenu(const std::vector<MenuItem>& items) override;
    /// Ends the process when there is no status item.
    void setItemTitle(int tag, const std::string& title) override;

private:
    struct Native;
    MacDelegate& delegate_;
    std::unique_ptr<Native> native_;
};

} // namespace velloway
