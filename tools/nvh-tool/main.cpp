// What the recorder offers to clients, without a screen.

#include "tools/nvh-tool/Command.h"

#include <HelixDash/services/Logger.h>

#include <QCoreApplication>

#include <algorithm>

namespace {

QString commandList(const std::vector<std::unique_ptr<Command>>& commands) {
    QString text = QStringLiteral("What the NVH recorder does, without its screen.\n\nCommands:\n");
    for (const auto& command : commands) {
        const QString call = command->name() + QLatin1Char(' ') + command->arguments();
        text += QStringLiteral("  %1  %2\n").arg(call.trimmed(), -28).arg(command->description());
    }
    return text + QStringLiteral("\n\"nvh-tool COMMAND --help\" lists a command's options.");
}

void addHostOptions(QCommandLineParser& parser) {
    HostOptions::addTo(parser);
    parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this help.")});
}

// The command is the first word that is neither an option nor an option's value.
QString findCommand(const QStringList& arguments, const std::vector<std::unique_ptr<Command>>& commands) {
    QCommandLineParser parser;
    addHostOptions(parser);
    QStringList known;
    for (const auto& command : commands) {
        for (const QCommandLineOption& option : command->options()) {
            // Two commands may have an option of one name.
            if (!known.contains(option.names().first()))
                parser.addOption(option);
            known.append(option.names().first());
        }
    }
    parser.parse(arguments);
    return parser.positionalArguments().value(0);
}

int runCommand(Command& command, const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(command.description());
    addHostOptions(parser);
    parser.addOptions(command.options());
    parser.addPositionalArgument(command.name(), command.description(),
                                 (command.name() + QLatin1Char(' ') + command.arguments()).trimmed());
    if (!parser.parse(arguments))
        return refuse(parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        print(parser.helpText());
        return ExitDone;
    }
    QString error;
    const std::optional<HostOptions> options = HostOptions::read(parser, &error);
    if (!options)
        return refuse(error);
    HostServices services;
    if (!services.open(*options, &error))
        return refuse(error);
    // Standard error is for progress here; the log is written where it is asked for.
    if (options->logFile.isEmpty())
        Logger::setOutput([](const QObject*, const QString&, const QString&) {});
    return command.run(parser, parser.positionalArguments().mid(1), services);
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("nvh-tool"));
    const auto commands = allCommands();
    const QStringList arguments = QCoreApplication::arguments();
    const QString name = findCommand(arguments, commands);
    const auto command =
        std::find_if(commands.begin(), commands.end(), [&name](const auto& each) { return each->name() == name; });
    if (command != commands.end())
        return runCommand(**command, arguments);

    const bool help = arguments.contains(QLatin1String("--help")) || arguments.contains(QLatin1String("-h"));
    if (name.isEmpty() && help) {
        print(commandList(commands));
        return ExitDone;
    }
    return refuse(name.isEmpty() ? QStringLiteral("no command is named; nvh-tool --help lists them")
                                 : QStringLiteral("there is no command \"%1\"; nvh-tool --help lists them").arg(name));
}
