#pragma once

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QStringList>

// A program run to its end, and what it said.
struct ProgramRun {
    int status = -1;
    QByteArray output;
    QByteArray errors;

    // Status -1 for a program that does not start, crashes, or does not end within half a minute.
    static ProgramRun of(const QString& program, const QStringList& arguments, const QString& directory = {}) {
        QProcess process;
        process.setWorkingDirectory(directory);
        process.start(program, arguments);
        if (!process.waitForFinished(30'000) || process.exitStatus() != QProcess::NormalExit)
            return {};
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }
};

// Returns the path, for the arguments of a program.
inline QString writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

inline QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}
