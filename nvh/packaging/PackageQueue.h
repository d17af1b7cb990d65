#pragma once

#include "nvh/files/OwnFile.h"
#include "nvh/packaging/PackageJob.h"

#include <QFile>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

// One package's way through the manager: what was asked for, and what is known of its outcome.
struct PackageTask {
    explicit PackageTask(const PackageJob& aJob);

    // The first thing that goes wrong is the outcome, with whom it is due to and what they say; what follows does not
    // undo it.
    void conclude(PackageOutcome::What what, const QString& program, const QString& words);

    // From here on the package is the file that lies there now, whatever will lie under its name.
    void holdFile();
    bool isReplaced() const;
    // Deletes that file. False, with nothing deleted, if it is not there any more.
    bool removeFile() const;

    // What was asked for, and what is known of what became of it.
    PackageJob job;
    PackageOutcome outcome;

private:
    std::optional<FileIdentity> mSent;
    std::shared_ptr<QFile> mHeld;  // while it is open, no other file can have its identity
};

// Packages that wait for one step, in their order, and the one that is in it. UI thread.
class PackageQueue {
public:
    // At the end.
    void add(const PackageTask& task) { mWaiting.push_back(task); }
    // Takes the next one into work, where it stays until end(). Null while one is in work, or if none waits.
    PackageTask* begin();
    // The one in work; null if there is none.
    PackageTask* inWork() { return mInWork ? &*mInWork : nullptr; }
    const PackageTask* inWork() const { return mInWork ? &*mInWork : nullptr; }
    bool isBusy() const { return mInWork.has_value(); }
    bool isEmpty() const { return !isBusy() && mWaiting.empty(); }
    // Takes the one in work out; there has to be one.
    PackageTask end();

    // True if that package waits.
    bool awaits(const QString& package) const;
    // Takes all that wait for that package out.
    std::vector<PackageTask> takeWaiting(const QString& package);
    // True if that file is to be packed, by the one in work or one that waits.
    bool wantsFile(const QString& file) const;

private:
    std::optional<PackageTask> mInWork;
    std::deque<PackageTask> mWaiting;
};
