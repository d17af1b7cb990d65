#pragma once

#include <QByteArray>
#include <QString>

// What a program has printed, kept up to a limit; beyond it the bytes are only counted.
class ChildOutput {
public:
    // What is judged of an answer, and what of it is logged and shown, in bytes.
    static constexpr qint64 kMostJudged = 16 * 1024 * 1024;
    static constexpr qint64 kMostShown = 64 * 1024;

    // Keeps that many bytes at most.
    explicit ChildOutput(qint64 limit) : mLimit(limit) {}

    // What the program has printed next.
    void add(const QByteArray& bytes);
    // As if nothing had been printed.
    void clear();

    // What is kept, and how many bytes were printed.
    const QByteArray& bytes() const { return mBytes; }
    qint64 total() const { return mTotal; }
    // True if bytes() is not all that was printed.
    bool isCut() const { return mTotal > mBytes.size(); }

    // For the log and for people: the text up to kMostShown, with a last line that says how much was left out.
    QString text() const { return shown(mBytes, mTotal); }
    // The same for a part of it.
    static QString shown(const QByteArray& bytes) { return shown(bytes, bytes.size()); }
    static QString shown(const QByteArray& bytes, qint64 total);

private:
    qint64 mLimit;
    QByteArray mBytes;
    qint64 mTotal = 0;
};
