#include "nvh/packaging/PackageSettling.h"

#include "nvh/files/OwnFile.h"
#include "nvh/files/SystemWords.h"
#include "nvh/packaging/PackageFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

namespace {

// True if a gzip-compressed tar archive is missing, unreadable or has no member.
bool holdsNothing(const QString& archive) {
    gzFile file = gzopen(QFile::encodeName(archive).constData(), "rb");
    if (!file)
        return true;
    // A member begins with a header block that names it; an archive without members begins with zeros.
    std::array<char, 512> block{};
    const int size = gzread(file, block.data(), unsigned(block.size()));
    gzclose(file);
    return size < int(block.size()) || std::all_of(block.begin(), block.end(), [](char byte) { return byte == 0; });
}

bool bringToDisk(const QString& path) {
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    // A file system that has no such thing for directories says so with EINVAL.
    const bool done = ::fsync(descriptor) == 0 || errno == EINVAL;
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    return done;
}

bool rename(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

bool linkOrCopy(const QString& file, const QString& target) {
    return ::link(QFile::encodeName(file).constData(), QFile::encodeName(target).constData()) == 0 ||
           QFile::copy(file, target);
}

// Gives the archive its name; the system's word if that, or bringing it to the disk, fails.
QString nameArchive(const SettlingOrder& order, bool* isNamed) {
    const auto word = [&order] { return QStringLiteral("%1: %2").arg(order.package, systemWord(errno)); };
    QString reason;
    if (!bringToDisk(order.part))
        reason = word();
    *isNamed = rename(order.part, order.package);
    if (!*isNamed) {
        reason = word();
        QFile::remove(order.part);
    } else if (!bringToDisk(QFileInfo(order.package).absolutePath()) && reason.isEmpty()) {
        reason = word();
    }
    return reason;
}

// The files of which a folder beside the archive has a copy now.
QStringList rescueFiles(const SettlingOrder& order, QString* folder) {
    QStringList kept;
    for (const QString& file : order.files) {
        if (!isPackable(file))
            continue;
        if (folder->isEmpty())
            *folder = makeRescueFolder(order.package);
        if (folder->isEmpty())
            break;
        if (linkOrCopy(file, *folder + QLatin1Char('/') + QFileInfo(file).fileName()))
            kept.append(file);
    }
    // Nobody must look for files in a folder that a full disk has left empty.
    if (kept.isEmpty() && !folder->isEmpty() && QDir().rmdir(*folder))
        folder->clear();
    return kept;
}

}  // namespace

Settlement settlePackage(const SettlingOrder& order) {
    Settlement result;
    if (!order.part.isEmpty())
        result.reason = nameArchive(order, &result.isNamed);
    result.isComplete = order.trusted && result.isNamed && result.reason.isEmpty() && !holdsNothing(order.package);

    QStringList kept;
    if (!result.isComplete)
        kept = rescueFiles(order, &result.rescueFolder);
    for (const QString& file : order.files) {
        const bool stays = !result.isComplete && !kept.contains(file) && isPackable(file);
        if (stays && result.rescueFolder.isEmpty())
            result.rescueFolder = QFileInfo(file).absolutePath();
        if (!stays && (!isPackable(file) || !QFile::remove(file)))
            result.notRemoved.append(file);
    }
    return result;
}
