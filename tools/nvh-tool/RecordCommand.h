#pragma once

#include "tools/nvh-tool/Command.h"

// One test run by the engine alone.
class RecordCommand : public Command {
public:
    QString name() const override { return QStringLiteral("record"); }
    QString description() const override {
        return QStringLiteral("one test run: records, then saves, uploads or discards");
    }
    QList<QCommandLineOption> options() const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) override;
};
