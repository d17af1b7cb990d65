#pragma once

#include <QString>
#include <QStringList>

#include <vector>

// Keeps files for one recorder among all on the machine, in this process or another, of this user or another. A file
// is meant by its directory and its name there, whatever path leads to it and whether or not it exists.
//
// The lock is a name that the system gives to one holder at a time and takes back when the holder dies, so nothing is
// left behind and nothing has to be cleared up. Recorders in different network namespaces do not see each other's.
// One thread.
class FileLock {
public:
    FileLock() = default;
    ~FileLock() { release(); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    // Takes these files in place of those that it holds. False if somebody else has one of them, with that file, its
    // holder and the system's word as the reason; then it holds what it held before.
    bool acquire(const QStringList& files, QString* reason);
    void release();
    bool isHeld() const { return !mHeld.empty(); }

private:
    struct Held {
        QByteArray name;
        int socket;
    };
    bool holds(const QByteArray& name) const;

    std::vector<Held> mHeld;
};
