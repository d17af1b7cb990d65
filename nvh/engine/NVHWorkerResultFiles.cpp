// The files of one test run: written, named and packed, or discarded.

#include "nvh/engine/NVHWorker.h"
#include "nvh/files/OwnFile.h"
#include "nvh/packaging/PackageFiles.h"

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
    mRequests.addFirst(std::move(request));
    resume();
}

Request NVHWorker::resultsRequest() {
    Request request{Request::Kind::Results};
    request.package.number = mPackageManager.newNumber();
    request.package.wish = getSaveOnlyState() ? PackageJob::Wish::Keep : PackageJob::Wish::Upload;
    request.package.notes = std::exchange(mNotes, {});
    request.tag = RunFiles::tagOf(mStore.foreignTest().value_or(mSelected.test));
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

// Hands the run's files to packaging, and returns what the driver must not miss about them.
QStringList NVHWorker::packFiles(Request request, bool pass, const QString& heldElsewhere) {
    PackageJob& package = request.package;
    package.package = RunFiles::freePackageName(readVin(), getTrim(), pass, request.tag);
    Logger(this, "INFO") << "package name: " << package.package;

    const QString recording = cRecordingFilename.value();
    const QString noRecording = mStore.whyNoRecording();
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
    mStore.close();
    mPackageManager.pack(package);
    mPackageManager.whenNotPackaging(this, [this] { releaseFiles(); });
    return notes;
}

// They hold nothing of this engine any more, unless a recording is under way.
void NVHWorker::releaseFiles() {
    if (mRun == Run::Idle && !mRecorder.isActive())
        mStore.release();
}

void NVHWorker::deleteRecordedFiles() {
    // A recorder that is still ending would put its capture in place after this, a microphone check its report.
    if (mRecorder.isEnding())
        mRecorder.discard();
    mMicCheck.release();
    removeRecordedFiles();
    mStore.close();
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
