#include "nvh/packaging/PackageRescue.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <unistd.h>
#include <zlib.h>

namespace {

bool linkOrCopy(const QString& file, const QString& target) {
    return ::link(QFile::encodeName(file).constData(), QFile::encodeName(target).constData()) == 0 ||
           QFile::copy(file, target);
}

// A folder that was not there before.
QString makeFolder(const QString& archive) {
    QString stem = archive;
    if (stem.endsWith(QLatin1String(".tgz")))
        stem.chop(4);
    QString folder = stem + QLatin1String(".rescue");
    for (int number = 2; QFileInfo::exists(folder); ++number)
        folder = QStringLiteral("%1.rescue-%2").arg(stem).arg(number);
    return QDir().mkpath(folder) ? folder : QString();
}

}  // namespace

bool archiveHoldsNothing(const QString& archive) {
    gzFile file = gzopen(QFile::encodeName(archive).constData(), "rb");
    if (!file)
        return true;
    // A member begins with a header block that names it; an archive without members begins with zeros.
    std::array<char, 512> block{};
    const int size = gzread(file, block.data(), unsigned(block.size()));
    gzclose(file);
    return size < int(block.size()) || std::all_of(block.begin(), block.end(), [](char byte) { return byte == 0; });
}

Rescue rescueFiles(const QString& archive, const QStringList& files) {
    Rescue rescue;
    for (const QString& file : files) {
        if (!QFile::exists(file))
            continue;
        if (rescue.folder.isEmpty())
            rescue.folder = makeFolder(archive);
        if (!rescue.folder.isEmpty() && linkOrCopy(file, rescue.folder + QLatin1Char('/') + QFileInfo(file).fileName()))
            rescue.kept.append(file);
    }
    return rescue;
}
