#pragma once

#include <QString>
#include <QStringList>

#include <vector>

// What can be told of a package by its name and by leafing through it once.
//
// The archive is read as a stream; nothing is unpacked, and memory does not grow with it. Any thread.
struct PackageContents {
    struct Recording {
        QString name;
        double seconds = 0;
        int channels = 0;
        int sampleRate = 0;
    };

    // The parts of the file name, empty when it is not made the way the recorder names packages.
    QString vin;
    QString verdict;
    QString testTag;

    // The files by their base names, in the order of the archive.
    QStringList files;
    // Those of the files that begin with the header of a PCM recording; the length follows from the file's size.
    std::vector<Recording> recordings;
    // Why the archive could not be read to its end; empty when it could. What was read until then stands.
    QString damage;

    static PackageContents of(const QString& path);
    // A few lines for a person.
    QString describe(qint64 archiveSize) const;
};
