#pragma once

#include <QString>
#include <QStringList>

// Keeps a run's loose files when the archive that should hold them cannot be trusted.

// True if a gzip-compressed tar archive is missing, unreadable or has no member.
bool archiveHoldsNothing(const QString& archive);

struct Rescue {
    QString folder;    // absolute path; empty if it could not be made or there was nothing to keep
    QStringList kept;  // the files of which the folder now has a copy
};

// Makes a folder beside the archive, named after it, and puts every file into it: as a hard link, which costs
// nothing, or as a copy where the file lies on another file system. Files that do not exist are passed over.
Rescue rescueFiles(const QString& archive, const QStringList& files);
