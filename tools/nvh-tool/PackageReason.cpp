#include "tools/nvh-tool/PackageReason.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace {

// One that is not there could not be started, which is the likeliest reason of all and the easiest to put right.
QString failureOf(const QString& program) {
    return QStandardPaths::findExecutable(program).isEmpty() ? QStringLiteral("%1 could not be started").arg(program)
                                                             : QStringLiteral("%1 failed").arg(program);
}

QString answer(const PackageOutcome& outcome) {
    const QString answer = outcome.words.isEmpty()
                               ? QStringLiteral("no answer from %1").arg(outcome.url)
                               : QStringLiteral("%1 answered \"%2\"").arg(outcome.url, outcome.words);
    return outcome.program.isEmpty() ? answer : QStringLiteral("%1, %2").arg(failureOf(outcome.program), answer);
}

QString whatHappened(const PackageOutcome& outcome) {
    using What = PackageOutcome::What;
    switch (outcome.what) {
        case What::NothingToPack:
            return QStringLiteral("there is nothing to pack");
        case What::Missing:
            return QStringLiteral("there is no package %1").arg(outcome.package);
        case What::NotSent:
            return failureOf(outcome.program);
        case What::NotStored:
            return QStringLiteral("upload failed: %1").arg(answer(outcome));
        case What::NotRegistered:
            return QStringLiteral("registering the package failed: %1").arg(answer(outcome));
        case What::PassedOver:
            return outcome.words.isEmpty()
                       ? QStringLiteral("passed over, since its name or kind keeps it from being sent")
                       : QStringLiteral("passed over: %1").arg(outcome.words);
        case What::Incomplete:
        case What::Kept:
        case What::Registered:
            break;
    }
    // The words are the program's, or the system's.
    const QString reason =
        outcome.program.isEmpty() ? QStringLiteral("the package is not complete") : failureOf(outcome.program);
    return outcome.words.isEmpty() ? reason : QStringLiteral("%1: %2").arg(reason, outcome.words);
}

}  // namespace

QString reasonOf(const PackageOutcome& outcome) {
    const QString reason = whatHappened(outcome);
    if (!outcome.rescueFolder.isEmpty())
        return QStringLiteral("%1; the files are kept in %2").arg(reason, outcome.rescueFolder);
    return QFileInfo::exists(outcome.package)
               ? QStringLiteral("%1; the package is kept: %2").arg(reason, outcome.package)
               : reason;
}
