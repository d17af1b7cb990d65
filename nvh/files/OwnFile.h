#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <optional>
#include <sys/types.h>

// The files that a run writes lie in directories that others write to as well, most of them under names that anybody
// can guess. So nothing is taken for a run's file by its name alone: it has to be a plain file of this user. Links are
// not followed. Any thread; failures leave their reason in errno.

// True for a plain file, whoever owns it; true for one that this user owns. False where there is nothing.
bool isPlainFile(const QString& path);
bool isOwnPlainFile(const QString& path);

// Why a file cannot be written as this user's, with its owner and the system's word: "/tmp/x.wav (owner root):
// Permission denied". Empty where there is nothing, or a plain file of this user.
QString whyNotOwn(const QString& path);

// Opens a file for writing from its start: an own plain file, which is emptied, or a new one; readable by this user
// alone, not inherited by children. A file with a second name is replaced, so that what the other name shows stays as
// it is. Anything else cannot be opened; nothing blocks. -1 or null on failure.
int openOwnFile(const QString& path);
FILE* openOwnStream(const QString& path);

// Replaces a file's content, or makes it. False if it cannot be opened, or not all of it was written.
bool writeOwnFile(const QString& path, const QByteArray& content);

// Moves a plain file over another one of this user, in one step; the old one goes only when the new one is complete,
// also across file systems, where the content is copied. Empty if that is done, else why not, with both as they were.
QString moveOwnFile(const QString& from, const QString& to);

// Makes a folder beside a file, named after it: "/tmp/test.wav" gives "/tmp/test.rescue", or "/tmp/test.rescue-2"
// where that is taken. Empty on failure.
QString makeRescueFolder(const QString& file);

// Which file it is, whatever its name: to tell whether the file of a name is still the same one.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;

    // Nothing where there is no plain file.
    static std::optional<FileIdentity> of(const QString& path);
    bool operator==(const FileIdentity&) const = default;
};
