#pragma once

#include "hosts/linux/windows/QuickWindows.h"

#include <QDir>
#include <QFile>
#include <QQmlAbstractUrlInterceptor>
#include <QQmlEngine>

namespace velloway::test {

/// Loads views from the folder that VELLOWAY_CHANGED_VIEWS names, where there are files for them, so that a
/// change of a view can be tried without a build.
class ChangedViews : public QQmlAbstractUrlInterceptor {
public:
    QUrl intercept(const QUrl& url, DataType type) override {
        const QString module = QStringLiteral("/qt/qml/Velloway/");
        if (type == QmlFile && url.scheme() == QLatin1String("qrc") && url.path().startsWith(module)) {
            const QString file = folder().filePath(url.path().mid(module.size()));
            if (QFile::exists(file)) {
                return QUrl::fromLocalFile(file);
            }
        }
        return url;
    }

    static bool isWanted() { return qEnvironmentVariableIsSet("VELLOWAY_CHANGED_VIEWS"); }

private:
    static QDir folder() { return QDir(qEnvironmentVariable("VELLOWAY_CHANGED_VIEWS")); }
};

/// The windows of the program, with the changed views.
inline std::unique_ptr<ViewWindows> makeTestedWindows() {
    static ChangedViews changed;
    return makeQuickWindowsOver([](QQmlEngine& engine) {
        if (ChangedViews::isWanted()) {
            engine.addUrlInterceptor(&changed);
        }
    });
}

} // namespace velloway::test
