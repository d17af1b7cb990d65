// Packing: tar piped into gzip, and what becomes of the loose files.

#include "nvh/packaging/NvhPackageManager.h"

#include "nvh/engine/Settings.h"
#include "nvh/packaging/ChildProcess.h"
#include "nvh/packaging/PackageRescue.h"

#include <HelixDash/services/Logger.h>
#include <HelixDash/services/SysUtils.h>

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace {

// What the program said in its own name on standard error; tar lists the packed files there too.
QString complaintOf(QProcess* process) {
    const QString name = process->program() + QLatin1Char(':');
    for (const QString& line : QString::fromLocal8Bit(process->readAllStandardError()).split(QLatin1Char('\n'))) {
        if (line.startsWith(name))
            return line;
    }
    return QString();
}

}  // namespace

NvhPackageManager::NvhPackageManager() = default;

NvhPackageManager::~NvhPackageManager() {
    blockSignals(true);
    const bool incomplete = isPackaging();
    for (QProcess* process : {mTarProcess, mGzipProcess, mUploadPackageProcess, mUploadMetadataProcess})
        endChildProcess(process);
    if (incomplete)
        QFile::remove(mArchiveInWork);
}

QString NvhPackageManager::readVin() {
    return SysUtils::vin();
}

void NvhPackageManager::startPackageManagerProcess(QString& packageName, QStringList& files) {
    Logger(this, "INFO") << "startPackageManagerProcess";
    // The pair at work would take this package's files for its own and remove them unpacked.
    if (isPackaging()) {
        mWaitingPackagings.push_back({packageName, files});
        return;
    }
    mPackageName = packageName;
    mFileList = files;
    mUploadFailCount = 0;
    mUploadSuccessCount = 0;
    mRescueFolder.clear();
    if (mFileList.isEmpty()) {
        Logger(this, "ERROR") << "File List Empty!";
        emit packagingFailure();
    }
    startPipeline();
}

void NvhPackageManager::startPipeline() {
    mArchiveInWork = mPackageName;
    mPipelineBroken = false;
    if (!mTarProcess || !mGzipProcess) {
        mTarProcess = new QProcess(this);
        mGzipProcess = new QProcess(this);
        mTarProcess->setStandardOutputProcess(mGzipProcess);
        mGzipProcess->setStandardOutputFile(mPackageName, QIODevice::Truncate);
        connect(mGzipProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
                &NvhPackageManager::removeUnpackagedFiles);
        connect(mTarProcess, &QProcess::errorOccurred, this, &NvhPackageManager::packageError);
        connect(mGzipProcess, &QProcess::errorOccurred, this, &NvhPackageManager::packageError);
    }
    emit packagingStart();
    const QStringList tarCommand = QStringList{QStringLiteral("tar -cvf -")} + mFileList;
    Logger(this, "INFO") << "Saving to" << mPackageName;
    Logger(this, "INFO") << "tarcmd: " << bracketed(tarCommand);
    QProcess* const tar = mTarProcess;
    mGzipProcess->startCommand(QStringLiteral("gzip -5"));
    // A gzip that cannot open its archive has failed by now, and the pair is gone.
    if (mTarProcess == tar)
        tar->startCommand(tarCommand.join(QLatin1Char(' ')));
}

void NvhPackageManager::packageError() {
    Logger(this, "ERROR") << "Packaging Error!";
    mPipelineBroken = true;
    // A gzip that never started leaves an empty file, which nobody may take for a package, and never finishes; tar dies
    // of its broken pipe.
    const bool withoutGzip = mGzipProcess && mGzipProcess->error() == QProcess::FailedToStart;
    if (withoutGzip)
        QFile::remove(mArchiveInWork);
    emit packageManagerFailure();
    if (!withoutGzip)
        return;
    if (isActive(mTarProcess))
        connect(mTarProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
                &NvhPackageManager::abandonPipeline, Qt::UniqueConnection);
    else
        abandonPipeline();
}

void NvhPackageManager::abandonPipeline() {
    if (!mGzipProcess)
        return;
    endPipeline();
    startNextPackaging();
}

void NvhPackageManager::removeUnpackagedFiles() {
    // How tar ended may be known only after gzip has.
    if (isActive(mTarProcess)) {
        connect(mTarProcess, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
                &NvhPackageManager::removeUnpackagedFiles, Qt::UniqueConnection);
        return;
    }
    if (!mGzipProcess)
        return;
    endPipeline();
    // Another package may have been uploaded meanwhile.
    QString packed = mArchiveInWork;
    startUploadingPackage(packed);
    startNextPackaging();
}

void NvhPackageManager::endPipeline() {
    const QStringList removable = safeToRemove();
    // What these two may still have to say is not about the next package.
    mTarProcess->disconnect(this);
    mGzipProcess->disconnect(this);
    mTarProcess = nullptr;
    mGzipProcess = nullptr;
    for (const QString& file : removable) {
        if (!QFile::remove(file))
            Logger(this, "ERROR") << "Cannot Remove:" << file;
    }
    mFileList.clear();
}

QStringList NvhPackageManager::safeToRemove() {
    if (!mPipelineBroken && hasSucceeded(mTarProcess) && hasSucceeded(mGzipProcess) &&
        !archiveHoldsNothing(mArchiveInWork))
        return mFileList;
    const QString reason = complaintOf(mTarProcess) + complaintOf(mGzipProcess);
    const Rescue rescue = rescueFiles(mArchiveInWork, mFileList);
    mRescueFolder = rescue.folder;
    QStringList removable;
    for (const QString& file : std::as_const(mFileList)) {
        if (rescue.kept.contains(file) || !QFile::exists(file))
            removable.append(file);
        else if (mRescueFolder.isEmpty())
            mRescueFolder = QFileInfo(file).absolutePath();  // it stays where it is
    }
    if (!mRescueFolder.isEmpty()) {
        Logger(this, "ERROR") << "Package incomplete, its files are kept in" << mRescueFolder << reason;
        emit updateFeedbackLabel(rescueNote());
    }
    return removable;
}

QString NvhPackageManager::rescueNote() const {
    return QStringLiteral("Packaging failed\nThe files are kept in %1").arg(mRescueFolder);
}

void NvhPackageManager::startNextPackaging() {
    if (mWaitingPackagings.empty()) {
        mWhenNotPackaging.makeAll();
        return;
    }
    PackageRequest next = mWaitingPackagings.front();
    mWaitingPackagings.erase(mWaitingPackagings.begin());
    startPackageManagerProcess(next.packageName, next.files);
}

void NvhPackageManager::whenNotPackaging(QObject* context, std::function<void()> callback) {
    if (!isPackaging()) {
        callback();
        return;
    }
    mWhenNotPackaging.add(context, std::move(callback));
}

bool NvhPackageManager::ambientSoundRecordingExists() const {
    return QFile::exists(cAmbientFileName.value());
}

bool NvhPackageManager::soundRecordingExists() const {
    return QFile::exists(cRecordingFilename.value());
}

bool NvhPackageManager::notesRecordingExists() const {
    return QFile::exists(cNotesFileName.value());
}
