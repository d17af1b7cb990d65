#pragma once

#include <QString>

// Which files packaging may touch. Any thread.

// True for a file that a package may hold and that may go when it does: a plain file of this user. What no test run
// writes, the gateway's configuration and the wheel speeds, may be anybody's plain file.
bool isPackable(const QString& file);

// Why a package cannot be sent, in one line that names it: a name that would mean more than a name on the command line
// of curl, or something that is no plain file which this user can remove. Empty if it can be sent, or is not there.
QString whyNotSendable(const QString& package);
