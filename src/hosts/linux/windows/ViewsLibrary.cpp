#include "hosts/linux/windows/ViewsLibrary.h"

#include <QCoreApplication>
#include <QFile>
#include <QLibrary>

namespace velloway {

namespace {

constexpr const char* fileName = "libvelloway-views.so";

QString pathOfLibrary() {
    const QString folder = QCoreApplication::applicationDirPath() + '/';
    const QString beside = folder + QLatin1String(fileName);
    return QFile::exists(beside) ? beside
                                 : folder + QLatin1String("../lib/velloway/") + QLatin1String(fileName);
}

} // namespace

std::unique_ptr<ViewWindows> loadViewsLibrary(Log& log) {
    QLibrary library(pathOfLibrary());
    library.setLoadHints(QLibrary::PreventUnloadHint);
    using Make = ViewWindows* (*)();
    if (const auto make = reinterpret_cast<Make>(library.resolve("velloway_makeViewWindows"))) {
        return std::unique_ptr<ViewWindows>(make());
    }
    log.line({"[Windows] No window can be shown: ", library.errorString().toStdString()});
    return nullptr;
}

} // namespace velloway
