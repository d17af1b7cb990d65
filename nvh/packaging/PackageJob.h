#pragma once

#include <QString>
#include <QStringList>

// One package on its way: what was asked for, which stays as it was asked whatever is asked for meanwhile.
struct PackageJob {
    enum class Wish { Keep, Upload };

    int number = 0;     // from NvhPackageManager::newNumber(); tells one package from all others of the manager
    QString package;    // absolute path of the archive
    QStringList files;  // what is packed into it, absolute paths; not needed for a package that is there already
    Wish wish = Wish::Keep;  // what becomes of it when it is packed
    QStringList notes;  // what the driver must not miss, shown below every text about this package
};

// What became of a package.
struct PackageOutcome {
    enum class What {
        Kept,           // there and saved, as asked
        Registered,     // stored at the factory and registered there, deleted here
        NothingToPack,  // there was no file for it
        Incomplete,     // tar or gzip failed; what they had to pack is in the rescue folder
        Missing,        // no archive of that name
        NotSent,        // curl could not be started or crashed
        NotStored,      // the upload failed, or its answer does not say that the package was stored
        NotRegistered,  // stored, but the post failed or its answer does not say that the package was registered
        PassedOver,     // a saved package whose name or kind keeps it from being sent
    };

    int number = 0;         // of its job
    QString package;        // absolute path of the archive
    What what = What::Kept;  // the first failure counts
    QString rescueFolder;  // where loose files are kept because the package is not complete; empty if it is
    QString program;       // the program that could not be started, crashed or complained; empty if none did. Its words
                           // are empty if it said nothing, as one that could not be started
    QString url;           // whom it was sent to last
    QString words;         // in whose own words: the line in which a program complained, the system's word, or the
                           // server's last status line; empty if there was no answer
    QString feedback;      // of a registered package: what the factory says to the driver

    // True for a package that is whole and where it was wished to be.
    bool isGood() const { return (what == What::Kept || what == What::Registered) && rescueFolder.isEmpty(); }
};
