#include "nvh/engine/WavHeader.h"

#include "nvh/capture/ErrorLog.h"
#include "nvh/files/SystemWords.h"

#include <HelixDash/services/Logger.h>

#include <QByteArray>
#include <QFile>
#include <QtEndian>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int kRiffSizeAt = 4;
constexpr int kDataSizeAt = 40;
constexpr quint32 kBeforeRiff = 8;  // what the RIFF size does not count

}  // namespace

WavHeader WavHeader::of(const QString& path) {
    WavHeader header;
    // A pipe without a writer must not hold anybody up.
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    struct stat status {};
    QByteArray bytes(kPlainSize, '\0');
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0) {
        header.mError = systemWord(errno);
    } else if (!S_ISREG(status.st_mode)) {
        header.mError = QStringLiteral("no plain file");
    } else if (const ssize_t size = ::pread(descriptor, bytes.data(), size_t(bytes.size()), 0); size < 0) {
        header.mError = systemWord(errno);
    } else {
        bytes.truncate(size);
        header.mLength = status.st_size;
        header.mWav = bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WAVE";
        header.mPlain = header.mWav && bytes.size() == kPlainSize && bytes.mid(12, 4) == "fmt " &&
                        qFromLittleEndian<quint32>(bytes.constData() + 16) == 16 && bytes.mid(36, 4) == "data";
    }
    if (header.mPlain) {
        header.mRiffSize = qFromLittleEndian<quint32>(bytes.constData() + kRiffSizeAt);
        header.mDataSize = qFromLittleEndian<quint32>(bytes.constData() + kDataSizeAt);
    }
    if (descriptor >= 0)
        ::close(descriptor);
    return header;
}

bool WavHeader::isUnfinished() const {
    return mPlain &&
           (mRiffSize != quint32(mLength) - kBeforeRiff || mDataSize == 0 || mDataSize > mLength - kPlainSize);
}

bool writeBytesToFile(FILE* file, int offset, const void* data, size_t size, const QObject* sender) {
    if (std::fseek(file, offset, SEEK_SET) != 0) {
        logErrorNumber(sender, QStringLiteral("File Seek Error!"));
        return false;
    }
    if (std::fwrite(data, size, 1, file) < 1) {
        logErrorNumber(sender, QStringLiteral("File Write Error!"));
        return false;
    }
    return true;
}

bool fixWavHeader(const QString& path, const QObject* sender) {
    FILE* file = std::fopen(path.toLocal8Bit().constData(), "rb+e");
    if (!file) {
        logErrorNumber(sender, QStringLiteral("Error opening file!!"));
        return false;
    }
    struct stat status {};
    if (::fstat(fileno(file), &status) != 0) {
        logErrorNumber(sender, QStringLiteral("Fstat Error!"));
        std::fclose(file);
        return false;
    }
    const auto size = quint32(status.st_size);
    const quint32 dataSize = qToLittleEndian(size - quint32(WavHeader::kPlainSize));
    const quint32 riffSize = qToLittleEndian(size - kBeforeRiff);
    // The data size first: a header that is repaired by half still says that its data is unfinished.
    if (!writeBytesToFile(file, kDataSizeAt, &dataSize, sizeof dataSize, sender)) {
        Logger(sender, "ERROR") << "Error Writing Data Size!";
        return false;
    }
    if (!writeBytesToFile(file, kRiffSizeAt, &riffSize, sizeof riffSize, sender)) {
        Logger(sender, "ERROR") << "Error Writing Riff Size!";
        return false;
    }
    if (std::fclose(file) != 0) {
        logErrorNumber(sender, QStringLiteral("File Close Error!"));
        return false;
    }
    return true;
}

bool repairUnfinishedWav(const QString& path, const QObject* sender) {
    return !WavHeader::of(path).isUnfinished() || fixWavHeader(path, sender);
}
