#pragma once

#include "tests/support/Files.h"

#include <QByteArray>
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
