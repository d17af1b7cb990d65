#include "tools/nvh-tool/Command.h"

#include "tools/nvh-tool/AnalyseCommand.h"
#include "tools/nvh-tool/CanLogCommand.h"
#include "tools/nvh-tool/JudgeCommand.h"
#include "tools/nvh-tool/PackagesCommand.h"
#include "tools/nvh-tool/RecordCommand.h"
#include "tools/nvh-tool/RepairWavCommand.h"

#include <cstdio>

void say(const QString& text) {
    std::fprintf(stderr, "nvh-tool: %s\n", qPrintable(text));
}

int refuse(const QString& reason) {
    say(reason);
    return ExitUsage;
}

void print(const QString& text) {
    std::printf("%s\n", qPrintable(text));
    std::fflush(stdout);
}

QString firstLine(const QString& text) {
    return text.trimmed().section(QLatin1Char('\n'), 0, 0).trimmed();
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
