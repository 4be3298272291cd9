#include "hosts/linux/desktop/LinuxUserDefaults.h"

#include <QFile>
#include <QStandardPaths>

#include <charconv>

namespace velloway {

namespace {

std::int64_t integerIn(const QVariant& stored) {
    const std::string text = stored.toString().toStdString();
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? value : 0;
}

} // namespace

LinuxUserDefaults::LinuxUserDefaults(const std::filesystem::path& file)
    : file_(QFile::decodeName(file.c_str()), QSettings::IniFormat) {
    for (const QString& key : file_.allKeys()) {
        values_.insert_or_assign(key.toStdString(), integerIn(file_.value(key)));
    }
}

std::filesystem::path LinuxUserDefaults::defaultFile() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return std::filesystem::path(QFile::encodeName(folder).toStdString()) / "velloway" / "velloway.conf";
}

std::int64_t LinuxUserDefaults::integer(std::string_view key) const {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(key);
    return found == values_.end() ? 0 : found->second;
}

bool LinuxUserDefaults::has(std::string_view key) const {
    const std::lock_guard lock(mutex_);
    return values_.find(key) != values_.end();
}

void LinuxUserDefaults::setInteger(std::string_view key, std::int64_t value) {
    {
        const std::lock_guard lock(mutex_);
        values_.insert_or_assign(std::string(key), value);
    }
    file_.setValue(QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size())),
                   static_cast<qlonglong>(value));
    file_.sync();
    if (const auto found = observers_.find(key); found != observers_.end()) {
        found->second.notify(value);
    }
}

Subscription LinuxUserDefaults::observe(std::string_view key, std::function<void(std::int64_t)> observer) {
    return observers_[std::string(key)].add(std::move(observer));
}

} // namespace velloway
