#pragma once

#include "nvh/Export.h"

#include <QString>

#include <cstdio>

class QObject;

// What the first bytes of a WAV file say about it, and what its length says about them. Any thread.
class NVH_EXPORT WavHeader {
public:
    // The header of recorded sound: "fmt " of 16 bytes, then the data.
    static constexpr qint64 kPlainSize = 44;

    // Reads a file's header. Blocks on nothing; a file that cannot be read, or is no plain file, has an error().
    static WavHeader of(const QString& path);

    // Why nothing could be read, in the system's words; empty if something was.
    const QString& error() const { return mError; }
    // True for a WAV file, whatever chunks it has.
    bool isWav() const { return mWav; }
    // True for one with the header of 44 bytes and the sound right behind it.
    bool isPlain() const { return mPlain; }
    // True for a plain one that its writer did not complete: its RIFF size is not its length less 8, modulo 2^32, or
    // its data size is 0 or goes past the end. Chunks behind the data are allowed.
    bool isUnfinished() const;
    // Bytes.
    qint64 fileLength() const { return mLength; }

private:
    QString mError;
    bool mWav = false;
    bool mPlain = false;
    qint64 mLength = 0;
    quint32 mRiffSize = 0;
    quint32 mDataSize = 0;
};

// Sets the RIFF size (offset 4) and the data size (offset 40) of a WAV file with the plain header from the file's
// length, modulo 2^32. False, with a log line of that sender, which may be null, if the file cannot be opened,
// measured, written or closed. Any thread.
NVH_EXPORT bool fixWavHeader(const QString& path, const QObject* sender);

// The same for an unfinished file; anything else is left alone. False only if the repair has failed.
NVH_EXPORT bool repairUnfinishedWav(const QString& path, const QObject* sender);

// Writes a block at an absolute offset in bytes. False, with a log line of that sender, on failure.
bool writeBytesToFile(FILE* file, int offset, const void* data, size_t size, const QObject* sender);
