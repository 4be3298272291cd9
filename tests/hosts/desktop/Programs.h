#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

namespace velloway::test {

/// Programs of the test's own making, found before or instead of the machine's.
class Programs {
public:
    Programs() : before_(qgetenv("PATH")) { qputenv("PATH", folder_.path().toUtf8() + ":" + before_); }
    ~Programs() { qputenv("PATH", before_); }

    void hideAllOthers() { qputenv("PATH", folder_.path().toUtf8()); }
    QString path(const QString& name) const { return folder_.filePath(name); }
    /// A shell script under this name. Its folder is in $here.
    void add(const QString& name, const QByteArray& script) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write("#!/bin/sh\nPATH=/usr/bin:/bin\nhere=$(dirname \"$0\")\n" + script);
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
    }
    QByteArray read(const QString& name) const {
        QFile file(path(name));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QString& name, const QByteArray& content) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write(content);
    }

private:
    QTemporaryDir folder_;
    QByteArray before_;
};

} // namespace velloway::test
