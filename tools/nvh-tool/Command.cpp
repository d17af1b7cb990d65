#include "tools/nvh-tool/Command.h"

#include "host/setup/PlainText.h"
#include "nvh/engine/Settings.h"
#include "tools/nvh-tool/AnalyseCommand.h"
#include "tools/nvh-tool/CanLogCommand.h"
#include "tools/nvh-tool/JudgeCommand.h"
#include "tools/nvh-tool/PackagesCommand.h"
#include "tools/nvh-tool/RecordCommand.h"
#include "tools/nvh-tool/RepairWavCommand.h"

#include <QCoreApplication>

#include <cstdio>

void say(const QString& text) {
    for (const QString& line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        std::fprintf(stderr, "nvh-tool: %s\n", PlainText::printable(line).constData());
}

int refuse(const QString& reason) {
    say(reason);
    return ExitUsage;
}

void print(const QString& text) {
    std::printf("%s\n", PlainText::printable(text).constData());
    std::fflush(stdout);
}

QString unknownTestType(const QString& type) {
    const QString list = QStringList(testTypesVsTags.keys()).join(QLatin1String(", "));
    return QStringLiteral("--type: \"%1\" is none of %2").arg(type, list);
}

void endInterrupted() {
    say(QStringLiteral("interrupted"));
    QCoreApplication::exit(ExitFailed);
}

std::vector<std::unique_ptr<Command>> allCommands() {
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(std::make_unique<RecordCommand>());
    commands.push_back(std::make_unique<AnalyseCommand>());
    commands.push_back(std::make_unique<JudgeCommand>());
    commands.push_back(std::make_unique<RepairWavCommand>());
    commands.push_back(std::make_unique<CanLogCommand>());
    commands.push_back(std::make_unique<PackagesCommand>());
    return commands;
}
