#pragma once

#include "tools/nvh-tool/Command.h"

// Judges a spectrum table against a band and a threshold.
class JudgeCommand : public Command {
public:
    QString name() const override { return QStringLiteral("judge"); }
    QString arguments() const override { return QStringLiteral("TABLE"); }
    QString description() const override { return QStringLiteral("judges a spectrum table, a file or -"); }
    QList<QCommandLineOption> options() const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) override;
};
