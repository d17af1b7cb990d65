#include "nvh/packaging/PackageFiles.h"

#include "nvh/engine/Settings.h"
#include "nvh/files/OwnFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A quote ends curl's argument, a backslash escapes, commas and semicolons part what belongs to a field of a form.
bool isPlainCharacter(QChar character) {
    return character.category() != QChar::Other_Control && !QStringLiteral("\"\\,;").contains(character);
}

// Where the sticky bit is set, a file goes only with its owner's or the directory's owner's will.
bool canRemove(const struct stat& file, const QString& directory) {
    const QByteArray name = QFile::encodeName(directory);
    struct stat status {};
    if (::access(name.constData(), W_OK | X_OK) != 0 || ::stat(name.constData(), &status) != 0)
        return false;
    const uid_t user = ::geteuid();
    return !(status.st_mode & S_ISVTX) || user == 0 || user == file.st_uid || user == status.st_uid;
}

}  // namespace

bool isPackable(const QString& file) {
    const bool isForeign = file == cConfigFileNameDest.value() || file == cWheelSpeedFileName.value();
    return isForeign ? isPlainFile(file) : isOwnPlainFile(file);
}

QString whyNotSendable(const QString& package) {
    if (!std::all_of(package.begin(), package.end(), isPlainCharacter))
        return QStringLiteral("%1: its name holds a quote, backslash, comma, semicolon or control character")
            .arg(package);
    struct stat status {};
    if (::lstat(QFile::encodeName(package).constData(), &status) != 0)
        return QString();
    if (!S_ISREG(status.st_mode))
        return QStringLiteral("%1: it is no plain file").arg(package);
    if (!canRemove(status, QFileInfo(package).absolutePath()))
        return QStringLiteral("%1: it could not be removed").arg(package);
    return QString();
}
