#include "nvh/process/ChildOutput.h"

#include <algorithm>

namespace {

// The bytes up to a limit that ends between two characters of UTF-8.
QByteArray wholeCharacters(const QByteArray& bytes, qsizetype limit) {
    const auto continues = [&bytes](qsizetype at) { return (quint8(bytes[at]) & 0xc0) == 0x80; };
    const qsizetype shortest = std::max<qsizetype>(0, limit - 4);
    while (limit > shortest && continues(limit))
        --limit;
    return bytes.left(limit);
}

}  // namespace

void ChildOutput::add(const QByteArray& bytes) {
    mTotal += bytes.size();
    // To grow a long text is to copy it; memory that is not written to costs nothing.
    if (mBytes.size() > kMostShown && mBytes.capacity() < mLimit)
        mBytes.reserve(qsizetype(mLimit));
    mBytes.append(bytes.left(qsizetype(mLimit) - mBytes.size()));
}

void ChildOutput::clear() {
    mBytes.clear();
    mTotal = 0;
}

QString ChildOutput::shown(const QByteArray& bytes, qint64 total) {
    if (total <= kMostShown)
        return QString::fromUtf8(bytes);
    const QByteArray kept = bytes.size() > kMostShown ? wholeCharacters(bytes, kMostShown) : bytes;
    return QString::fromUtf8(kept) + QStringLiteral("\n[%1 more bytes left out]").arg(total - kept.size());
}
