#pragma once

#include <QString>

#include <sys/types.h>

// How the system calls things, for messages. Any thread.

// The system's word for an error number, as errno holds it.
QString systemWord(int error);

// A user's name, or its number where it has none.
QString userName(uid_t user);
