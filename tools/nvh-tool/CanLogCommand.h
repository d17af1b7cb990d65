#pragma once

#include "tools/nvh-tool/Command.h"

// Has the gateway forward one CAN message, and logs the motor speed that it carries.
class CanLogCommand : public Command {
public:
    QString name() const override { return QStringLiteral("can-log"); }
    QString description() const override {
        return QStringLiteral("logs the motor speed in a CAN message that the gateway forwards");
    }
    QList<QCommandLineOption> options() const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) override;
};
