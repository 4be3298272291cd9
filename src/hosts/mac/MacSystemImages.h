#pragma once

#include "platform/SystemImages.h"

namespace velloway {

class MacSystemImages final : public SystemImages {
public:
    std::optional<Bitmap> symbol(std::string_view name, PixelSize size, const Tint& tint) const override;
    std::optional<Bitmap> applicationIcon(PixelSize size) const override;
};

} // namespace velloway
