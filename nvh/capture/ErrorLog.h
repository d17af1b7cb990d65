#pragma once

#include <QString>

class QObject;

// Reports a failed system call at "ERROR": the message, three blanks, the error number, its text. Reads errno first, so
// that nothing between the call and its report can change it. Any thread.
void logErrorNumber(const QObject* sender, const QString& message);
