#pragma once

#include "tools/nvh-tool/Command.h"

// Repairs the size fields that a recorder which was cut off left untrue; a finished file is left alone.
class RepairWavCommand : public Command {
public:
    QString name() const override { return QStringLiteral("repair-wav"); }
    QString arguments() const override { return QStringLiteral("FILE…"); }
    QString description() const override {
        return QStringLiteral("sets an unfinished WAV header's size fields from the file's length");
    }
    int run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) override;
};
