#pragma once

#include <HelixDash/Export.h>

#include <QDateTime>
#include <QHash>
#include <QMutex>
#include <QString>
#include <QVariant>

// The configuration: one INI file of "group/key" settings. It is read again when the file has changed, at the next
// question; a changed file that cannot be read is reported in the log (file, line, reason) and changes nothing.
//
// Any thread. Without an open file every key is absent. Works before an application object exists.
class HELIXDASH_EXPORT ConfigStore {
public:
    static ConfigStore& instance();

    // Reads the file and follows it from now on; an absent file is an empty configuration. False with a reason, and
    // the store as it was, if the file cannot be read.
    bool open(const QString& path, QString* error = nullptr);

    // The setting, or an invalid variant.
    QVariant value(const QString& key);

    // Writes a setting into the file, keeping all others. False with a reason if the file cannot be written.
    bool setValue(const QString& key, const QVariant& value, QString* error = nullptr);

    Q_DISABLE_COPY(ConfigStore)

private:
    // Tells one state of the file from another.
    struct Stamp {
        qint64 inode = 0;
        qint64 size = -1;
        qint64 modifiedNs = 0;
        bool operator==(const Stamp&) const = default;
    };

    ConfigStore() = default;
    static Stamp stampOf(const QString& path);
    static bool read(const QString& path, QHash<QString, QVariant>& settings, QString& error);
    void refresh();

    QMutex mMutex;
    QString mPath;
    Stamp mStamp;
    QHash<QString, QVariant> mSettings;
};
