#pragma once

#include "tools/nvh-tool/Command.h"

// Lists the saved packages of this vehicle, or uploads them all.
class PackagesCommand : public Command {
public:
    QString name() const override { return QStringLiteral("packages"); }
    QString description() const override {
        return QStringLiteral("lists this vehicle's saved packages, or uploads them");
    }
    QList<QCommandLineOption> options() const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) override;
};
