#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

// What the recorder's child processes have in common. Thread of the process object.

// "[a, b]", as lists stand in the log.
QString bracketed(const QStringList& items);

// Ends a child before its owner goes: no slot of anybody hears of it any more; it is asked once to terminate, given
// that many milliseconds, then killed and waited for. Zero milliseconds: killed at once. Null and idle are allowed.
void endChildProcess(QProcess* process, int graceMs = 0);

// True for a process that is starting or running.
bool isActive(const QProcess* process);

// True for a process that has ended as it should: started, not crashed, exit status 0.
bool hasSucceeded(const QProcess* process);

// True for a curl whose answer ended before it was complete: what has arrived of it proves nothing.
bool wasCutOff(const QProcess* curl);
