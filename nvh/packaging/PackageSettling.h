#pragma once

#include <QString>
#include <QStringList>

// The last step of packing, when tar and gzip have ended: the archive gets its name, and the loose files go, if need be
// into a rescue folder. Reads and writes files and waits for the disk, so it is not for the UI thread.

// What is to be settled.
struct SettlingOrder {
    QString part;         // what gzip has written; empty if it has written nothing
    QString package;      // the name that it gets
    QStringList files;    // what it should hold
    bool trusted = true;  // false if tar or gzip has failed
};

// How that went.
struct Settlement {
    bool isNamed = false;     // the archive lies under its name
    bool isComplete = false;  // and on the disk, and holds what it should, as far as is known
    QString rescueFolder;     // where loose files are kept because it is not complete; empty if there are none
    QStringList notRemoved;   // files that should have gone
    QString reason;           // the system's word if it has kept the archive from its name or the disk
};

// Whatever tar and gzip said, the archive gets its name; if that fails, nothing of it is left. Unless it is complete,
// the files are first linked or copied into a folder beside it; those for which that fails stay where they are.
Settlement settlePackage(const SettlingOrder& order);
