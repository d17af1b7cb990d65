#include "nvh/files/OwnFile.h"

#include "nvh/files/SystemWords.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::optional<struct stat> statusOf(const QString& path) {
    struct stat status {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return status;
}

bool isOwnPlain(const struct stat& status) {
    return S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
}

int errorOf(const struct stat& status) {
    if (S_ISLNK(status.st_mode))
        return ELOOP;
    if (S_ISDIR(status.st_mode))
        return EISDIR;
    return S_ISREG(status.st_mode) ? EACCES : EPERM;
}

// The descriptor if it is one of a file that may be written here; else it is closed.
int checked(int descriptor, nlink_t* links) {
    struct stat status {};
    if (descriptor < 0)
        return -1;
    if (::fstat(descriptor, &status) == 0 && isOwnPlain(status)) {
        *links = status.st_nlink;
        return descriptor;
    }
    ::close(descriptor);
    errno = errorOf(status);
    return -1;
}

bool moveFile(const QString& from, const QString& to) {
    const auto rename = [](const QString& source, const QString& target) {
        return std::rename(QFile::encodeName(source).constData(), QFile::encodeName(target).constData()) == 0;
    };
    if (rename(from, to))
        return true;
    if (errno != EXDEV)
        return false;
    const QString part = to + QLatin1String(".part");
    QFile::remove(part);
    QFile source(from);
    if (!source.copy(part)) {
        QFile::remove(part);
        errno = EIO;
        return false;
    }
    QFile::setPermissions(part, QFile::ReadOwner | QFile::WriteOwner);
    if (!rename(part, to)) {
        const int reason = errno;
        QFile::remove(part);
        errno = reason;
        return false;
    }
    return QFile::remove(from);
}

}  // namespace

bool isPlainFile(const QString& path) {
    const auto status = statusOf(path);
    return status && S_ISREG(status->st_mode);
}

bool isOwnPlainFile(const QString& path) {
    const auto status = statusOf(path);
    return status && isOwnPlain(*status);
}

QString whyNotOwn(const QString& path) {
    const auto status = statusOf(path);
    if (!status || isOwnPlain(*status))
        return QString();
    return QStringLiteral("%1 (owner %2): %3").arg(path, userName(status->st_uid), systemWord(errorOf(*status)));
}

int openOwnFile(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    constexpr int kFlags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    constexpr mode_t kMode = S_IRUSR | S_IWUSR;
    nlink_t links = 1;
    int descriptor = checked(::open(name.constData(), kFlags, kMode), &links);
    if (descriptor >= 0 && links > 1) {
        ::close(descriptor);
        if (::unlink(name.constData()) != 0)
            return -1;
        descriptor = checked(::open(name.constData(), kFlags | O_EXCL, kMode), &links);
    }
    if (descriptor >= 0 && (::fchmod(descriptor, kMode) != 0 || ::ftruncate(descriptor, 0) != 0)) {
        const int reason = errno;
        ::close(descriptor);
        errno = reason;
        return -1;
    }
    return descriptor;
}

FILE* openOwnStream(const QString& path) {
    const int descriptor = openOwnFile(path);
    return descriptor < 0 ? nullptr : ::fdopen(descriptor, "w");
}

bool writeOwnFile(const QString& path, const QByteArray& content) {
    FILE* file = openOwnStream(path);
    if (!file)
        return false;
    const bool written = content.isEmpty() || std::fwrite(content.constData(), size_t(content.size()), 1, file) == 1;
    // What is in the buffer reaches the file here, so this is where a full disk shows.
    return (std::fclose(file) == 0) && written;
}

QString moveOwnFile(const QString& from, const QString& to) {
    const QString foreign = whyNotOwn(to);
    if (!foreign.isEmpty() || moveFile(from, to))
        return foreign;
    return QStringLiteral("%1 cannot be moved to %2: %3").arg(from, to, systemWord(errno));
}

QString makeRescueFolder(const QString& file) {
    const QFileInfo info(file);
    const QString stem = info.absolutePath() + QLatin1Char('/') + info.completeBaseName() + QLatin1String(".rescue");
    QString folder = stem;
    // 0700, and never one that somebody else has made meanwhile.
    for (int number = 2; ::mkdir(QFile::encodeName(folder).constData(), S_IRWXU) != 0; ++number) {
        if (errno != EEXIST)
            return QString();
        folder = QStringLiteral("%1-%2").arg(stem).arg(number);
    }
    return folder;
}

std::optional<FileIdentity> FileIdentity::of(const QString& path) {
    const auto status = statusOf(path);
    if (!status || !S_ISREG(status->st_mode))
        return std::nullopt;
    return FileIdentity{status->st_dev, status->st_ino, status->st_size};
}
