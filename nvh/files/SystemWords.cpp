#include "nvh/files/SystemWords.h"

#include <cstring>
#include <pwd.h>

QString systemWord(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

QString userName(uid_t user) {
    const struct passwd* entry = ::getpwuid(user);
    return entry ? QString::fromLocal8Bit(entry->pw_name) : QString::number(user);
}
