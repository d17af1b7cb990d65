#pragma once

#include "nvh/packaging/PackageJob.h"
#include "nvh/packaging/PackageSettling.h"
#include "nvh/packaging/SideThread.h"
#include "nvh/process/ChildProcess.h"

#include <QObject>
#include <QString>

// tar piped into gzip for one job, up to the archive under its name.
//
// The archive is written beside its place as NAME.part, readable by this user alone, and gets its name when it is on
// the disk; the loose files go after that. Only a process that is killed leaves a NAME.part.
//
// UI thread; settling the package runs on a thread of its own.
class PackagePipeline : public QObject {
    Q_OBJECT
public:
    // What is packed is decided here: files that are not the user's own are left alone. One that is gone is tar's to
    // miss.
    PackagePipeline(const PackageJob& job, QObject* parent);
    // Kills what runs, and removes an archive that is not complete: the loose files are still there. Blocks until the
    // programs are gone, or while a package is settled: as long as the disk takes.
    ~PackagePipeline() override;

    // As it was given.
    const PackageJob& job() const { return mJob; }
    // The job's files that are packed, and why others are not, a line each.
    const QStringList& fileList() const { return mFileList; }
    const QStringList& notPacked() const { return mNotPacked; }
    // The command as it is logged and, joined by blanks, given to tar.
    QStringList tarCommand() const;

    // To be called once. failed() and done() follow, some of them perhaps before it returns.
    void start();

    // How it ended; from done() on.
    bool isDone() const { return mState == State::Done; }
    const Settlement& result() const { return mResult; }
    // The program to which it is due that the package is not complete, and the line in which it complained, or the
    // system's word. Empty if there is none.
    QString culprit() const;
    QString words();

signals:
    // tar or gzip could not be started or crashed, or the archive could not get its name. Perhaps more than once;
    // done() follows all the same.
    void failed();
    // Once: there is nothing more to come.
    void done();

private:
    enum class State { Idle, Packing, TarEnding, Settling, Done };

    void enter(State state);
    void startPrograms();
    void settle();
    void heedError(QProcess::ProcessError error, const ChildProcess* process);
    void giveUpArchive();

    PackageJob mJob;
    QStringList mFileList;
    QStringList mNotPacked;
    State mState = State::Idle;
    QString mPart;         // what gzip writes; empty if there is no such file
    bool mTrusted = true;  // false once tar or gzip could not be started or crashed
    QString mNoPart;       // why there is none, in the system's word
    ChildProcess mTarProcess{nullptr};
    ChildProcess mGzipProcess{nullptr};
    Settlement mResult;
    SideThread mSide{this};
};
