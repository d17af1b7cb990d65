#pragma once

#include "tests/support/Files.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <sys/resource.h>

// The machine as a test of the recorder wants it: a recorder that needs no sound device, the named data values, a
// configuration of its own, an empty /tmp. It replaces and removes programs, so it refuses to work anywhere but in a
// private namespace.
class PrivateMachine {
public:
    static constexpr const char* kVin = "TEST1VEHICLE00001";
    static constexpr const char* kCapture = "/tmp/capture/test.wav";
    static constexpr const char* kConfig = "/tmp/settings/test.ini";

    PrivateMachine();

    // As at the start: all programs there, nothing recorded, packed or set. The recorder has one of its ways to fail,
    // or none.
    void reset(const QByteArray& recorderMode = QByteArray());
};

// Makes a program of a shell script.
void installProgram(const QString& path, const QByteArray& script);
// Until the next reset: the program of that name on the search path is such a script; or it is not found there, of tar,
// gzip and curl only the others are.
void replaceProgram(const QString& name, const QByteArray& script);
void hideProgram(const QString& name);

void configure(const QString& key, const QVariant& value);
// Sets a data value; an invalid variant makes it invalid.
void setValue(const char* name, const QVariant& value);

// Names as tar lists them, and one member's content.
QStringList archiveMembers(const QString& archive);
QByteArray archiveMember(const QString& archive, const QString& member);

// While it lives no file of this process can grow, as on a full disk.
class FullDisk {
public:
    FullDisk();
    ~FullDisk();

private:
    rlimit mBefore{};
};

// The programs that this process has started and that have not ended, and how many threads it has.
QStringList childPrograms();
int threadCount();
