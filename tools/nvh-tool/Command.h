#pragma once

#include "host/setup/HostServices.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

// How the program ends.
enum ExitStatus { ExitDone = 0, ExitFailed = 1, ExitUsage = 2 };

// On standard error, each line of the text with the program's name before it. Control characters, which a server or a
// file name may hold, are written out: they would command the terminal.
void say(const QString& text);
// The same, as what a command returns when its arguments cannot be used.
int refuse(const QString& reason);
// On standard output, with a line end. Of the control characters only line ends and tabs stay.
void print(const QString& text);

// The reason to refuse a --type that is none of the test types.
QString unknownTestType(const QString& type);

// For a command that has nothing to complete when it is interrupted: says so, and ends the event loop as failed.
void endInterrupted();

// One of the tool's commands.
class Command {
public:
    virtual ~Command() = default;

    virtual QString name() const = 0;
    // Its arguments after the name, as the help shows them; empty if it takes options only.
    virtual QString arguments() const { return QString(); }
    virtual QString description() const = 0;
    virtual QList<QCommandLineOption> options() const { return {}; }
    // Does the work with the services open and returns the exit status. The arguments come without the command's name.
    virtual int run(const QCommandLineParser& parser, const QStringList& arguments, HostServices& services) = 0;
};

// All of them, in the order in which the help lists them.
std::vector<std::unique_ptr<Command>> allCommands();
