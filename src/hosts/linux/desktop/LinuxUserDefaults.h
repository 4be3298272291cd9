#pragma once

#include "platform/UserDefaults.h"
#include "state/Observable.h"

#include <QSettings>

#include <filesystem>
#include <map>
#include <mutex>
#include <string>

namespace velloway {

/// An INI file in the user's folder of settings. It is read once; each write goes to the file at once. When the
/// file can't be read or written, the values live on in memory.
class LinuxUserDefaults : public UserDefaults {
public:
    explicit LinuxUserDefaults(const std::filesystem::path& file = defaultFile());

    static std::filesystem::path defaultFile();

    std::int64_t integer(std::string_view key) const override;
    bool has(std::string_view key) const override;
    void setInteger(std::string_view key, std::int64_t value) override;
    [[nodiscard]] Subscription observe(std::string_view key,
                                       std::function<void(std::int64_t)> observer) override;

private:
    QSettings file_;
    mutable std::mutex mutex_;
    /// What is stored under a key but is not an integer stands as 0.
    std::map<std::string, std::int64_t, std::less<>> values_;
    std::map<std::string, ObserverList<std::int64_t>, std::less<>> observers_;
};

} // namespace velloway
