#include "tools/nvh-tool/PackagesCommand.h"

#include "host/setup/StopSignals.h"
#include "nvh/packaging/NvhPackageManager.h"
#include "tools/nvh-tool/PackageReason.h"

#include <QCoreApplication>
#include <QTimer>

namespace {

// Uploads what is saved, one after the other, until nothing is under way any more.
class UploadRun : public QObject {
public:
    UploadRun() {
        connect(&mStopSignals, &StopSignals::caught, this, &endInterrupted);
        connect(&mManager, &NvhPackageManager::packageUploadStart, this,
                [this] { say(QStringLiteral("uploading %1").arg(mManager.packageName())); });
        mManager.onOutcome(this, [this](const PackageOutcome& outcome) { heed(outcome); });
        QTimer::singleShot(0, this, [this] {
            mManager.uploadAllSavedPackages();
            endIfIdle();
        });
    }

private:
    // A package that is passed over holds nobody up; any other failure is the last that is heard.
    void heed(const PackageOutcome& outcome) {
        if (!outcome.isGood()) {
            if (!mReason.isEmpty())
                say(mReason);
            mReason = reasonOf(outcome);
        }
        // The next upload begins in this turn of the event loop.
        QTimer::singleShot(0, this, &UploadRun::endIfIdle);
    }

    void endIfIdle() {
        if (mEnded || !mManager.isIdle())
            return;
        mEnded = true;
        const int left = mManager.countSavedFiles();
        if (left > 0)
            mReason +=
                QStringLiteral("%1packages left: %2").arg(QLatin1String(mReason.isEmpty() ? "" : "; ")).arg(left);
        say(mReason.isEmpty() ? QStringLiteral("all uploaded") : mReason);
        QCoreApplication::exit(mReason.isEmpty() ? ExitDone : ExitFailed);
    }

    StopSignals mStopSignals;
    NvhPackageManager mManager;
    QString mReason;
    bool mEnded = false;
};

}  // namespace

QList<QCommandLineOption> PackagesCommand::options() const {
    return {
        {QStringLiteral("upload"), QStringLiteral("Uploads them one after the other in the order of their names.")}};
}

int PackagesCommand::run(const QCommandLineParser& parser, const QStringList& arguments, HostServices&) {
    if (!arguments.isEmpty())
        return refuse(QStringLiteral("packages: unexpected \"%1\"").arg(arguments.first()));
    const QStringList packages = NvhPackageManager().savedPackages();
    if (packages.isEmpty() && parser.isSet(QStringLiteral("upload"))) {
        say(QStringLiteral("no saved packages"));
        return ExitDone;
    }
    if (parser.isSet(QStringLiteral("upload"))) {
        UploadRun run;
        return QCoreApplication::exec();
    }
    for (const QString& package : packages)
        print(package);
    say(packages.size() == 1 ? QStringLiteral("1 saved package")
                             : QStringLiteral("%1 saved packages").arg(packages.size()));
    return ExitDone;
}
