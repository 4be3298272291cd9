#pragma once

#include "platform/SystemImages.h"

#include <cstddef>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace velloway::test {

/// A system with images of one colour each.
class FakeSystemImages : public SystemImages {
public:
    bool hasSymbols = true;
    bool hasIcon = true;
    /// Red, green, blue and alpha, the colours multiplied by alpha already.
    std::vector<std::uint8_t> pixel{10, 20, 30, 40};

    std::optional<Bitmap> symbol(std::string_view name, PixelSize size, const Tint& tint) const override {
        std::ostringstream text;
        text << name << " " << size.width << "x" << size.height << " " << tint.red << " " << tint.green << " "
             << tint.blue << " " << tint.alpha;
        note(text.str());
        return hasSymbols ? std::optional(filled(size)) : std::nullopt;
    }
    std::optional<Bitmap> applicationIcon(PixelSize size) const override {
        note("icon " + std::to_string(size.width) + "x" + std::to_string(size.height));
        iconThread = std::this_thread::get_id();
        return hasIcon ? std::optional(filled(size)) : std::nullopt;
    }

    std::vector<std::string> asked() const {
        const std::lock_guard lock(mutex_);
        return asked_;
    }
    /// Where the icon was asked for.
    mutable std::thread::id iconThread;

private:
    Bitmap filled(PixelSize size) const {
        Bitmap bitmap{.size = size};
        for (int i = 0; i < size.width * size.height; ++i) {
            bitmap.rgba.insert(bitmap.rgba.end(), pixel.begin(), pixel.end());
        }
        return bitmap;
    }
    void note(std::string text) const {
        const std::lock_guard lock(mutex_);
        asked_.push_back(std::move(text));
    }

    mutable std::mutex mutex_;
    mutable std::vector<std::string> asked_;
};

} // namespace velloway::test
