#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// Returns the path, for the arguments of a program.
inline QString writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
    return path;
}

// Nothing if it cannot be read.
inline QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
