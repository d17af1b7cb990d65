#include "nvh/packaging/PackageQueue.h"

#include <algorithm>
#include <iterator>

PackageTask::PackageTask(const PackageJob& aJob) : job(aJob) {
    outcome.number = job.number;
    outcome.package = job.package;
}

void PackageTask::conclude(PackageOutcome::What what, const QString& program, const QString& words) {
    if (outcome.what != PackageOutcome::What::Kept)
        return;
    outcome.what = what;
    outcome.program = program;
    outcome.words = words;
}

void PackageTask::holdFile() {
    mHeld = std::make_shared<QFile>(job.package);
    mHeld->open(QIODevice::ReadOnly);
    mSent = FileIdentity::of(job.package);
}

bool PackageTask::isReplaced() const {
    const auto now = FileIdentity::of(job.package);
    return now && now != mSent;
}

bool PackageTask::removeFile() const {
    return mSent && FileIdentity::of(job.package) == mSent && QFile::remove(job.package);
}

PackageTask* PackageQueue::begin() {
    if (isBusy() || mWaiting.empty())
        return nullptr;
    mInWork = mWaiting.front();
    mWaiting.pop_front();
    return inWork();
}

PackageTask PackageQueue::end() {
    const PackageTask task = *mInWork;
    mInWork.reset();
    return task;
}

bool PackageQueue::awaits(const QString& package) const {
    return std::any_of(mWaiting.begin(), mWaiting.end(),
                       [&package](const PackageTask& task) { return task.job.package == package; });
}

std::vector<PackageTask> PackageQueue::takeWaiting(const QString& package) {
    const auto firstTaken = std::stable_partition(
        mWaiting.begin(), mWaiting.end(), [&package](const PackageTask& task) { return task.job.package != package; });
    std::vector<PackageTask> taken(firstTaken, mWaiting.end());
    mWaiting.erase(firstTaken, mWaiting.end());
    return taken;
}

bool PackageQueue::wantsFile(const QString& file) const {
    const auto wants = [&file](const PackageTask& task) { return task.job.files.contains(file); };
    return (mInWork && wants(*mInWork)) || std::any_of(mWaiting.begin(), mWaiting.end(), wants);
}
