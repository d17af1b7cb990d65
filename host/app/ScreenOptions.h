#pragma once

#include "host/setup/HostOptions.h"

// What helixdash is told on its command line.
struct ScreenOptions {
    HostOptions host;
    QString plugin;
    QString applicationDirectory;  // absolute, without a trailing slash
    QString drive;                 // empty if not given
    bool console = false;

    // Nothing, and why in one line, if the arguments cannot be used. Ends the process where help or the version was
    // asked for.
    static std::optional<ScreenOptions> read(const QStringList& arguments, QString* error);
};
