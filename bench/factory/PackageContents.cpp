#include "bench/factory/PackageContents.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QtEndian>

#include <archive.h>
#include <archive_entry.h>
#include <array>
#include <memory>
#include <optional>

namespace {

constexpr size_t kWavHeader = 44;

// The canonical header that ALSA's recorder writes: RIFF at 0, WAVE at 8, the format from 20, the samples from 44.
std::optional<PackageContents::Recording> recordingFrom(const std::array<char, kWavHeader>& header, const QString& name,
                                                        qint64 fileSize) {
    const QByteArray bytes = QByteArray::fromRawData(header.data(), header.size());
    if (!bytes.startsWith("RIFF") || bytes.mid(8, 8) != "WAVEfmt ")
        return std::nullopt;
    const auto bytesPerSecond = qFromLittleEndian<quint32>(header.data() + 28);
    if (bytesPerSecond == 0)
        return std::nullopt;
    return PackageContents::Recording{name, double(fileSize - qint64(kWavHeader)) / bytesPerSecond,
                                      qFromLittleEndian<quint16>(header.data() + 22),
                                      int(qFromLittleEndian<quint32>(header.data() + 24))};
}

void readName(const QString& fileName, PackageContents& contents) {
    // The trim may hold anything but '_'; a number before the ending is the store's own.
    static const QRegularExpression pattern(
        QStringLiteral(R"(^([^-]+)-.*_(pass|fail)-CAR_([^-]*)-\d+(?:\.\d+)?\.tgz$)"));
    const QRegularExpressionMatch match = pattern.match(fileName);
    contents.vin = match.captured(1);
    contents.verdict = match.captured(2);
    contents.testTag = match.captured(3);
}

void readEntry(archive* reader, archive_entry* entry, PackageContents& contents) {
    if (archive_entry_filetype(entry) != AE_IFREG)
        return;
    const QString name = QFileInfo(QString::fromLocal8Bit(archive_entry_pathname(entry))).fileName();
    contents.files += name;
    const qint64 size = archive_entry_size(entry);
    std::array<char, kWavHeader> header{};
    if (size < qint64(kWavHeader) || archive_read_data(reader, header.data(), header.size()) != qint64(kWavHeader))
        return;
    if (const auto recording = recordingFrom(header, name, size))
        contents.recordings.push_back(*recording);
}

}  // namespace

PackageContents PackageContents::of(const QString& path) {
    PackageContents contents;
    readName(QFileInfo(path).fileName(), contents);

    const std::unique_ptr<archive, decltype(&archive_read_free)> reader(archive_read_new(), &archive_read_free);
    archive_read_support_filter_gzip(reader.get());
    archive_read_support_format_tar(reader.get());
    constexpr size_t kBlock = 65536;
    int result = archive_read_open_filename(reader.get(), QFile::encodeName(path).constData(), kBlock);
    archive_entry* entry = nullptr;
    while (result == ARCHIVE_OK || result == ARCHIVE_WARN) {
        result = archive_read_next_header(reader.get(), &entry);
        if (result == ARCHIVE_OK || result == ARCHIVE_WARN)
            readEntry(reader.get(), entry, contents);
    }
    if (result != ARCHIVE_EOF)
        contents.damage = QString::fromLocal8Bit(archive_error_string(reader.get()));
    return contents;
}

QString PackageContents::describe(qint64 archiveSize) const {
    QStringList lines;
    if (!vin.isEmpty())
        lines += QStringLiteral("%1: test %2, %3").arg(vin, testTag.isEmpty() ? QStringLiteral("?") : testTag, verdict);
    lines += QStringLiteral("%1 MB, %2 files").arg(double(archiveSize) / 1e6, 0, 'f', 2).arg(files.size());
    for (const Recording& recording : recordings) {
        lines += QStringLiteral("%1: %2 s, %3 channels, %4 Hz")
                     .arg(recording.name)
                     .arg(recording.seconds, 0, 'f', 1)
                     .arg(recording.channels)
                     .arg(recording.sampleRate);
    }
    if (!damage.isEmpty())
        lines += QStringLiteral("Damaged: %1").arg(damage);
    return lines.join(QLatin1Char('\n'));
}
