#include "tools/nvh-tool/PackageOutcome.h"

#include "nvh/engine/Settings.h"
#include "nvh/packaging/NvhPackageManager.h"
#include "tools/nvh-tool/Command.h"

#include <QFileInfo>
#include <QStandardPaths>
#include <QTimer>

namespace {

// A program that is not there is the likeliest reason of all, and the easiest to put right.
QString missingProgram() {
    for (const QString& program : {QStringLiteral("tar"), QStringLiteral("gzip"), QStringLiteral("curl")}) {
        if (QStandardPaths::findExecutable(program).isEmpty())
            return program;
    }
    return QString();
}

// The answer's part that says why: a status line, or that there was none.
QString answerIn(const QString& feedback, const QString& url) {
    const QString answer = firstLine(feedback.section(QLatin1Char('\n'), 1));
    return answer.isEmpty() ? QStringLiteral("no answer from %1").arg(url)
                            : QStringLiteral("%1 answered \"%2\"").arg(url, answer);
}

}  // namespace

PackageOutcome::PackageOutcome(NvhPackageManager& manager) : mManager(manager) {
    connect(&manager, &NvhPackageManager::updateFeedbackLabel, this, [this](const QString& text) { mFeedback = text; });
    connect(&manager, &NvhPackageManager::packagingFailure, this,
            [this] { fail(QStringLiteral("there is nothing to pack")); });
    connect(&manager, &NvhPackageManager::packageUploadFailure, this,
            [this] { fail(QStringLiteral("upload failed: %1").arg(answerIn(mFeedback, cPackageUploadUrl.value()))); });
    connect(&manager, &NvhPackageManager::metadataUploadFailure, this, [this] {
        // The feedback with the server's answer follows this signal.
        QTimer::singleShot(0, this, [this] {
            fail(QStringLiteral("registering the package failed: %1")
                     .arg(answerIn(mFeedback, cMetadataUploadUrl.value())));
        });
    });
    connect(&manager, &NvhPackageManager::packageManagerFailure, this, [this] {
        const QString missing = missingProgram();
        fail(missing.isEmpty() ? QStringLiteral("packing or uploading failed")
                               : QStringLiteral("%1 could not be started").arg(missing));
    });
    connect(&manager, &NvhPackageManager::fileSaved, this, &PackageOutcome::checkLater);
    connect(&manager, &NvhPackageManager::metadataUploadSuccess, this, &PackageOutcome::checkLater);
}

bool PackageOutcome::hasFailed() const {
    return !mReason.isEmpty() || !mManager.rescueFolder().isEmpty();
}

QString PackageOutcome::reason() const {
    const QString reason = mReason.isEmpty() ? QStringLiteral("the package is not complete") : mReason;
    if (!mManager.rescueFolder().isEmpty())
        return QStringLiteral("%1; the files are kept in %2").arg(reason, mManager.rescueFolder());
    const QString package = mManager.packageName();
    return QFileInfo::exists(package) ? QStringLiteral("%1; the package is kept: %2").arg(reason, package) : reason;
}

void PackageOutcome::fail(const QString& step) {
    if (mReason.isEmpty())
        mReason = step;
    checkLater();
}

void PackageOutcome::checkLater() {
    mManager.whenNotPackaging(this, [this] {
        QTimer::singleShot(0, this, [this] {
            if (mSettled || !mManager.isIdle())
                return;
            mSettled = true;
            emit settled();
        });
    });
}
