#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

// The archives that have come in: one directory, in which a file is either whole or not there.
//
// What lies in the directory is the whole state, so a server that was killed needs no repair: archives lie in it under
// the names they came with, `.incoming/` holds those on their way in (and is emptied at the start), `.registered/`
// what has been registered for an archive of the same name. Any thread; two archives of one name may come in at once.
class PackageStore {
public:
    struct Entry {
        QString name;
        qint64 size = 0;
        QDateTime received;
    };

    // An archive on its way in. Gone without a trace unless it has been kept.
    class Incoming {
    public:
        ~Incoming();
        Incoming(const Incoming&) = delete;
        Incoming& operator=(const Incoming&) = delete;

        // False when the disk takes no more.
        bool write(std::span<const std::byte> bytes);
        // Puts the archive in place, on disk for good, and returns the name it has there. That is the wanted name as
        // far as it can be a file name; a name that is taken by other content gets a number, one that is taken by the
        // same content is that archive. Null when the disk refuses.
        std::optional<QString> keepAs(const QString& wanted);

    private:
        friend class PackageStore;
        Incoming(QByteArray directory, QByteArray path, int file);

        const QByteArray mDirectory;
        const QByteArray mPath;
        const int mFile;
    };

    // Makes the directory if it is missing. Null, and the reason, when it cannot be used or another server uses it.
    static std::unique_ptr<PackageStore> open(const QString& directory, QString* error);
    ~PackageStore();
    PackageStore(const PackageStore&) = delete;
    PackageStore& operator=(const PackageStore&) = delete;

    // Null when the disk refuses.
    std::unique_ptr<Incoming> receive();
    // The path of a stored archive; null for a name that the store does not hold.
    std::optional<QString> find(const QString& name) const;
    // All archives, the newest first.
    std::vector<Entry> entries() const;

    // What has been registered for an archive: JSON, empty when nothing has. False when the disk refuses.
    bool setRegistration(const QString& name, const QByteArray& json);
    QByteArray registration(const QString& name) const;

private:
    PackageStore(const QString& directory, int lock);

    const QString mDirectory;
    const int mLock;
};
