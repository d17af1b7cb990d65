// The files of one test run: written, named and packed, or discarded.

#include "nvh/engine/NVHWorker.h"
#include "nvh/files/OwnFile.h"
#include "nvh/packaging/PackageFiles.h"
#include "nvh/process/ChildProcess.h"

#include <HelixDash/services/Logger.h>

#include <QFile>

#include <utility>

void NVHWorker::createDataValuesFile() {
    Logger(this, "INFO") << "Creating DataValues File";
    const QByteArray text = RunFiles::testConditions().toLocal8Bit();
    const QString name = cDataValuesFileName.value();
    FILE* file = openOwnStream(name);
    if (!file) {
        Logger(this, "ERROR") << "Unable to Create" << name;
        return;
    }
    // A full disk shows when the text leaves its buffer.
    if (std::fprintf(file, "%s", text.constData()) < 0 || std::fflush(file) != 0)
        logWithErrorNum(QStringLiteral("Unable to Write to File %1").arg(name));
    std::fclose(file);
}

void NVHWorker::resultsDone() {
    Request request = resultsRequest();
    mPackageInHand = request.package.number;
    // Before a run that waits as well: that one would overwrite what is to be packed.
    mRequests.push_front(std::move(request));
    resume();
}

NVHWorker::Request NVHWorker::resultsRequest() {
    Request request{Request::Kind::Results};
    request.package.number = mPackageManager.newNumber();
    request.package.wish = getSaveOnlyState() ? PackageJob::Wish::Keep : PackageJob::Wish::Upload;
    request.package.notes = std::exchange(mNotes, {});
    request.tag = getTag();
    // A recording that is not of the chosen test says itself what was tested.
    const bool foreign = !mOpenRun && mTestTypeSpent && isPackable(cRecordingFilename.value());
    if (const auto noted = foreign ? RunFiles::readTestNote() : std::nullopt)
        request.tag = tagOf(noted->testType, noted->clunk);
    return request;
}

void NVHWorker::packResults(Request request) {
    Logger(this, "INFO") << "Results done";
    const QString heldElsewhere = keepFiles();
    if (heldElsewhere.isEmpty() && !writeOwnFile(cResultsFileName.value(), QStringLiteral("SkippedQ5").toLocal8Bit()))
        logWithErrorNum(QStringLiteral("Unable to Write to File %1").arg(cResultsFileName.value()));
    const QStringList notes = packFiles(std::move(request), true, heldElsewhere);
    emit finished(true);
    if (!notes.isEmpty())
        emit updateFeedbackLabel(notes.join(QLatin1Char('\n')));
}

void NVHWorker::renameFiles(bool pass) {
    packFiles(resultsRequest(), pass, keepFiles());
}

QString NVHWorker::keepFiles() {
    QString reason;
    mFiles.acquire(RunFiles::keptFiles(), &reason);
    return reason;
}

// Hands the run's files to packaging, and returns what the driver must not miss about them.
QStringList NVHWorker::packFiles(Request request, bool pass, const QString& heldElsewhere) {
    PackageJob& package = request.package;
    package.package = RunFiles::freePackageName(readVin(), getTrim(), pass, request.tag);
    Logger(this, "INFO") << "package name: " << package.package;

    const QString recording = cRecordingFilename.value();
    const QString noRecording = whyNoRecording();
    const bool mine = heldElsewhere.isEmpty();
    mFilesToPackage.clear();
    for (const ConfigStringValue& setting : allFilenames) {
        const QString name = setting.value();
        // An older recording that lies in the place of one that this run does not have is not this run's.
        const bool older = name == recording && !noRecording.isEmpty();
        if (mine && !older && isPackable(name))
            mFilesToPackage.append(name);
        else
            Logger(this, "INFO") << "Missing" << name;
    }
    if (!mFilesToPackage.contains(recording))
        package.notes.prepend(QStringLiteral("No recording\n%1").arg(mine ? noRecording : heldElsewhere));
    for (const QString& note : std::as_const(package.notes))
        Logger(this, "ERROR") << note;
    const QStringList notes = package.notes;
    package.files = mFilesToPackage;
    closeRun();
    mPackageManager.pack(package);
    mPackageManager.whenNotPackaging(this, [this] { releaseFiles(); });
    return notes;
}

// Empty if there is one for the package that is made now.
QString NVHWorker::whyNoRecording() const {
    if (mOpenRun && !mOpenRun->capture.noFile.isEmpty())
        return mOpenRun->capture.noFile;
    if (isPackable(cRecordingFilename.value()))
        return QString();
    const QString foreign = whyNotOwn(cRecordingFilename.value());
    return foreign.isEmpty() ? QStringLiteral("nothing was recorded") : foreign;
}

void NVHWorker::closeRun() {
    mOpenRun.reset();
    mTestTypeSpent = true;
}

// Nothing of this engine lies in them any more, unless a recording is under way.
void NVHWorker::releaseFiles() {
    RunFiles::dropTestNoteWithoutRecording();
    if (mRun == Run::Idle && !mRecorder.isActive() && !mOpenRun)
        mFiles.release();
}

void NVHWorker::deleteRecordedFiles() {
    // A recorder that is still ending would put its capture in place after this, a microphone check its report.
    if (mRecorder.isEnding())
        mRecorder.discard();
    releaseMicCheck();
    removeRecordedFiles();
    closeRun();
    releaseFiles();
    resume();
}

void NVHWorker::removeRecordedFiles() {
    if (const QString heldElsewhere = keepFiles(); !heldElsewhere.isEmpty()) {
        Logger(this, "ERROR") << "Unable to Delete " << heldElsewhere;
        return;
    }
    for (const ConfigStringValue& setting : allFilenames) {
        const QString name = setting.value();
        if (!QFile::exists(name) || mPackageManager.isPackaging(name))
            continue;
        if (!isPackable(name) || !QFile::remove(name))
            Logger(this, "ERROR") << "Unable to Delete " << name;
    }
}
