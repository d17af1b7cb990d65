#include "bench/factory/PackageStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString kIncoming = QStringLiteral(".incoming");
const QString kRegistered = QStringLiteral(".registered");

constexpr int kLongestName = 200;
constexpr int kMostOfOneName = 10'000;

// The last part of a path, with the characters that mean nothing to a shell, a URL or a web page. Never empty and never
// hidden, so it can name none of the store's own folders.
QString fileNameFrom(const QString& wanted) {
    QString name;
    for (const QChar c : wanted.section(QLatin1Char('/'), -1).section(QLatin1Char('\\'), -1)) {
        const bool plain = (c >= QLatin1Char('a') && c <= QLatin1Char('z')) ||
                           (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
                           (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || QStringLiteral("._+-").contains(c);
        name += plain ? c : QLatin1Char('_');
    }
    while (name.startsWith(QLatin1Char('.')))
        name.remove(0, 1);
    name = name.right(kLongestName);
    return name.isEmpty() ? QStringLiteral("package") : name;
}

// "a.tgz", "a.2.tgz", "a.3.tgz" …
QString numbered(const QString& name, int number) {
    if (number == 1)
        return name;
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    const QString stem = dot > 0 ? name.left(dot) : name;
    return QStringLiteral("%1.%2%3").arg(stem).arg(number).arg(name.mid(stem.size()));
}

bool sameContent(const QByteArray& one, const QByteArray& other) {
    QFile a(QFile::decodeName(one));
    QFile b(QFile::decodeName(other));
    if (!a.open(QIODevice::ReadOnly) || !b.open(QIODevice::ReadOnly) || a.size() != b.size())
        return false;
    constexpr qint64 kBlock = 65536;
    for (;;) {
        const QByteArray block = a.read(kBlock);
        if (block != b.read(kBlock))
            return false;
        if (block.isEmpty())
            return true;
    }
}

bool syncDirectory(const QByteArray& directory) {
    const int file = ::open(directory.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0)
        return false;
    const bool synced = ::fsync(file) == 0;
    ::close(file);
    return synced;
}

}  // namespace

PackageStore::Incoming::Incoming(QByteArray directory, QByteArray path, int file)
    : mDirectory(std::move(directory)), mPath(std::move(path)), mFile(file) {}

PackageStore::Incoming::~Incoming() {
    ::close(mFile);
    ::unlink(mPath.constData());
}

bool PackageStore::Incoming::write(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(mFile, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        bytes = bytes.subspan(static_cast<size_t>(count));
    }
    return true;
}

std::optional<QString> PackageStore::Incoming::keepAs(const QString& wanted) {
    if (::fsync(mFile) != 0)
        return std::nullopt;
    const QString plain = fileNameFrom(wanted);
    for (int number = 1; number <= kMostOfOneName; ++number) {
        const QString name = numbered(plain, number);
        const QByteArray target = mDirectory + '/' + QFile::encodeName(name);
        // A link, since a rename would replace a file that came in under this name at the same moment.
        if (::link(mPath.constData(), target.constData()) == 0) {
            if (syncDirectory(mDirectory))
                return name;
            ::unlink(target.constData());
            return std::nullopt;
        }
        if (errno != EEXIST)
            return std::nullopt;
        if (sameContent(mPath, target))
            return name;
    }
    return std::nullopt;
}

std::unique_ptr<PackageStore> PackageStore::open(const QString& directory, QString* error) {
    const QDir place(directory);
    if (!QDir().mkpath(place.filePath(kIncoming)) || !QDir().mkpath(place.filePath(kRegistered))) {
        *error = QStringLiteral("cannot make the directory %1").arg(directory);
        return nullptr;
    }
    const int lock = ::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (lock < 0 || ::flock(lock, LOCK_EX | LOCK_NB) != 0) {
        *error = errno == EWOULDBLOCK
                     ? QStringLiteral("%1 is in use by another server").arg(directory)
                     : QStringLiteral("cannot use %1: %2").arg(directory, QString::fromLocal8Bit(std::strerror(errno)));
        if (lock >= 0)
            ::close(lock);
        return nullptr;
    }
    QDir incoming(place.filePath(kIncoming));
    for (const QString& leftOver : incoming.entryList(QDir::Files | QDir::Hidden))
        incoming.remove(leftOver);
    return std::unique_ptr<PackageStore>(new PackageStore(place.absolutePath(), lock));
}

PackageStore::PackageStore(const QString& directory, int lock) : mDirectory(directory), mLock(lock) {}

PackageStore::~PackageStore() {
    ::close(mLock);
}

std::unique_ptr<PackageStore::Incoming> PackageStore::receive() {
    const QByteArray directory = QFile::encodeName(mDirectory);
    QByteArray path = directory + '/' + QFile::encodeName(kIncoming) + "/XXXXXX";
    const int file = ::mkostemp(path.data(), O_CLOEXEC);
    if (file < 0)
        return nullptr;
    ::fchmod(file, 0644);
    return std::unique_ptr<Incoming>(new Incoming(directory, path, file));
}

std::optional<QString> PackageStore::find(const QString& name) const {
    const QString path = mDirectory + QLatin1Char('/') + name;
    // A name as it would have been stored under holds no way out of the directory.
    if (name != fileNameFrom(name) || !QFileInfo(path).isFile())
        return std::nullopt;
    return path;
}

std::vector<PackageStore::Entry> PackageStore::entries() const {
    std::vector<Entry> found;
    for (const QFileInfo& file : QDir(mDirectory).entryInfoList(QDir::Files, QDir::Time))
        found.push_back({file.fileName(), file.size(), file.lastModified().toUTC()});
    return found;
}

bool PackageStore::setRegistration(const QString& name, const QByteArray& json) {
    QSaveFile file(QStringLiteral("%1/%2/%3").arg(mDirectory, kRegistered, name));
    return file.open(QIODevice::WriteOnly) && file.write(json) == json.size() && file.commit();
}

QByteArray PackageStore::registration(const QString& name) const {
    QFile file(QStringLiteral("%1/%2/%3").arg(mDirectory, kRegistered, name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
