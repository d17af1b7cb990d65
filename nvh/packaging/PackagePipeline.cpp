#include "nvh/packaging/PackagePipeline.h"

#include "nvh/files/OwnFile.h"
#include "nvh/files/SystemWords.h"
#include "nvh/packaging/PackageFiles.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <unistd.h>

namespace {

// The line in which a program says what went wrong. tar lists what it packs there too, and names the leading "/" that
// it drops; if there is nothing else, that is better than nothing.
QString complaintIn(const QString& output, const QStringList& files) {
    const QStringList lines = output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        const bool isListed = files.contains(line) || files.contains(QLatin1Char('/') + line);
        if (!isListed && !line.contains(QLatin1String("Removing leading")))
            return line;
    }
    return lines.isEmpty() ? QString() : lines.last();
}

}  // namespace

PackagePipeline::PackagePipeline(const PackageJob& job, QObject* parent) : QObject(parent), mJob(job) {
    for (const QString& file : job.files) {
        if (isPackable(file) || !QFileInfo::exists(file))
            mFileList.append(file);
        else
            mNotPacked.append(whyNotOwn(file));
    }
    mTarProcess.setStandardOutputProcess(&mGzipProcess);
    const auto ended = qOverload<int, QProcess::ExitStatus>(&QProcess::finished);
    connect(&mGzipProcess, ended, this, [this] { enter(State::TarEnding); });
    connect(&mTarProcess, ended, this, [this] {
        if (mState == State::TarEnding)
            enter(State::Settling);
    });
    for (ChildProcess* process : {&mTarProcess, &mGzipProcess})
        connect(process, &QProcess::errorOccurred, this,
                [this, process](QProcess::ProcessError error) { heedError(error, process); });
}

PackagePipeline::~PackagePipeline() {
    mTarProcess.endNow(0);
    mGzipProcess.endNow(0);
    if (mState < State::Settling)
        giveUpArchive();
}

QStringList PackagePipeline::tarCommand() const {
    return QStringList{QStringLiteral("tar -cvf -")} + mFileList;
}

void PackagePipeline::start() {
    enter(State::Packing);
}

void PackagePipeline::enter(State state) {
    mState = state;
    switch (state) {
        case State::Idle:
            break;
        case State::Packing:
            startPrograms();
            break;
        case State::TarEnding:
            // How tar ended may be known only after gzip has.
            if (!mTarProcess.isActive())
                enter(State::Settling);
            break;
        case State::Settling:
            settle();
            break;
        case State::Done:
            emit done();
            break;
    }
}

void PackagePipeline::startPrograms() {
    mPart = mJob.package + QLatin1String(".part");
    const int descriptor = openOwnFile(mPart);
    if (descriptor < 0) {
        mNoPart = QStringLiteral("%1: %2").arg(mPart, systemWord(errno));
        mPart.clear();
        emit failed();
        enter(State::Settling);
        return;
    }
    ::close(descriptor);
    mGzipProcess.setStandardOutputFile(mPart, QIODevice::Truncate);
    mGzipProcess.startCommand(QStringLiteral("gzip -5"));
    // Unless gzip has failed by now.
    if (mState == State::Packing)
        mTarProcess.startCommand(tarCommand().join(QLatin1Char(' ')));
}

void PackagePipeline::heedError(QProcess::ProcessError error, const ChildProcess* process) {
    mTrusted = false;
    // A gzip that never was never finishes either; tar dies of its broken pipe.
    const bool withoutGzip = process == &mGzipProcess && error == QProcess::FailedToStart;
    if (withoutGzip)
        giveUpArchive();
    emit failed();
    if (withoutGzip)
        enter(State::TarEnding);
}

void PackagePipeline::giveUpArchive() {
    if (!mPart.isEmpty())
        QFile::remove(mPart);
    mPart.clear();
}

void PackagePipeline::settle() {
    const bool trusted = mTrusted && mTarProcess.hasSucceeded() && mGzipProcess.hasSucceeded();
    const SettlingOrder order{mPart, mJob.package, mFileList, trusted};
    mSide.run([order] { return settlePackage(order); },
              [this](const Settlement& result) {
                  mResult = result;
                  if (!mPart.isEmpty() && !mResult.isNamed)
                      emit failed();
                  enter(State::Done);
              });
}

QString PackagePipeline::culprit() const {
    if (mResult.isComplete || !mNoPart.isEmpty())
        return QString();
    // When gzip goes, tar dies of its broken pipe, so gzip is asked first.
    if (mPart.isEmpty() || !mGzipProcess.hasSucceeded())
        return QStringLiteral("gzip");
    return mTarProcess.hasSucceeded() && !mResult.reason.isEmpty() ? QString() : QStringLiteral("tar");
}

QString PackagePipeline::words() {
    const QString program = culprit();
    if (program.isEmpty())
        return mNoPart + mResult.reason;
    ChildProcess& process = program == QLatin1String("gzip") ? mGzipProcess : mTarProcess;
    return complaintIn(process.errors().text(), mFileList);
}
