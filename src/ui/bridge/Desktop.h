#pragma once

#include <QFontDatabase>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace velloway {

/// What every desktop has another of.
class Desktop : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString fixedFontFamily READ fixedFontFamily CONSTANT)

public:
    QString fixedFontFamily() const { return QFontDatabase::systemFont(QFontDatabase::FixedFont).family(); }
};

} // namespace velloway
