#include "hosts/linux/desktop/LinuxUserDefaults.h"

#include <QFile>
#include <QLocale>
#include <QStandardPaths>

#include <cmath>
#include <limits>

namespace velloway {

namespace {

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

/// An integer, however it is written (12, +12, 12.0, 1.2e1); one beyond 64 bits becomes the nearest that there
/// is. 0 for anything else.
std::int64_t integerIn(const QVariant& stored) {
    const QString text = stored.toString();
    bool isInteger = false;
    if (const qlonglong integer = QLocale::c().toLongLong(text, &isInteger); isInteger) {
        return integer;
    }
    bool isNumber = false;
    const double number = QLocale::c().toDouble(text, &isNumber);
    if (!isNumber || !std::isfinite(number) || std::trunc(number) != number) {
        return 0;
    }
    constexpr double limit = 9223372036854775808.0;
    return number >= limit ? largest : number < -limit ? smallest : static_cast<std::int64_t>(number);
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
