#pragma once

#include "tools/nvh-tool/Command.h"

// Runs the analysis program on the configured recording and RPM log, then saves the package.
class AnalyseCommand : public Command {
public:
    QString name() const override { return QStringLiteral("analyse"); }
    QString description() const override { return QStringLiteral("analyses the recording, then saves the package"); }
    QList<QCommandLineOption> options() const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) override;
};
