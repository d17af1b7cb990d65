#include "tools/nvh-tool/PackagesCommand.h"

#include "nvh/packaging/NvhPackageManager.h"
#include "tools/nvh-tool/PackageOutcome.h"

#include <QCoreApplication>
#include <QTimer>

QList<QCommandLineOption> PackagesCommand::options() const {
    return {
        {QStringLiteral("upload"), QStringLiteral("Uploads them one after the other in the order of their names.")}};
}

int PackagesCommand::run(const QCommandLineParser& parser, const QStringList& arguments, HostServices&) {
    if (!arguments.isEmpty())
        return refuse(QStringLiteral("packages: unexpected \"%1\"").arg(arguments.first()));
    NvhPackageManager manager;
    const QStringList packages = manager.savedPackages();
    if (!parser.isSet(QStringLiteral("upload"))) {
        for (const QString& package : packages)
            print(package);
        say(packages.size() == 1 ? QStringLiteral("1 saved package")
                                 : QStringLiteral("%1 saved packages").arg(packages.size()));
        return ExitDone;
    }
    if (packages.isEmpty()) {
        say(QStringLiteral("no saved packages"));
        return ExitDone;
    }

    PackageOutcome outcome(manager);
    QObject::connect(&manager, &NvhPackageManager::packageUploadStart, &outcome,
                     [&manager] { say(QStringLiteral("uploading %1").arg(manager.packageName())); });
    QObject::connect(&outcome, &PackageOutcome::settled, &outcome, [&] {
        const int left = manager.countSavedFiles();
        if (left > 0)
            say(QStringLiteral("%1; packages left: %2").arg(outcome.reason()).arg(left));
        else
            say(QStringLiteral("all uploaded"));
        QCoreApplication::exit(left > 0 ? ExitFailed : ExitDone);
    });
    QTimer::singleShot(0, &manager, [&manager] { manager.uploadAllSavedPackages(); });
    return QCoreApplication::exec();
}
