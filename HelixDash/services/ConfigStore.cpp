#include "HelixDash/services/ConfigStore.h"

#include <HelixDash/services/Logger.h>

#include <QFile>
#include <QSettings>

#include <sys/stat.h>

namespace {

// QSettings takes almost anything for INI; a line that is neither a section, a setting nor a comment is a mistake.
bool checkLines(const QString& path, QString& error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return false;
    }
    bool continued = false;
    for (int number = 1; !file.atEnd(); ++number) {
        const QByteArray line = file.readLine().trimmed();
        const bool section = line.startsWith('[') && line.endsWith(']');
        const bool comment = line.isEmpty() || line.startsWith(';') || line.startsWith('#');
        if (!continued && !comment && !section && line.indexOf('=') < 1) {
            error = QStringLiteral("%1:%2: neither [section] nor key=value: %3")
                        .arg(path, QString::number(number), QString::fromUtf8(line.left(60)));
            return false;
        }
        continued = line.endsWith('\\');
    }
    return true;
}

}  // namespace

ConfigStore& ConfigStore::instance() {
    // Never destroyed: settings are read while the process ends.
    static auto* store = new ConfigStore;
    return *store;
}

ConfigStore::Stamp ConfigStore::stampOf(const QString& path) {
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {qint64(status.st_ino), qint64(status.st_size),
            qint64(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec};
}

bool ConfigStore::read(const QString& path, QHash<QString, QVariant>& settings, QString& error) {
    if (!QFile::exists(path)) {
        settings.clear();
        return true;
    }
    if (!checkLines(path, error))
        return false;
    const QSettings file(path, QSettings::IniFormat);
    if (file.status() != QSettings::NoError) {
        error = QStringLiteral("%1: not readable as INI settings").arg(path);
        return false;
    }
    settings.clear();
    for (const QString& key : file.allKeys())
        settings.insert(key, file.value(key));
    return true;
}

bool ConfigStore::open(const QString& path, QString* error) {
    const QMutexLocker locker(&mMutex);
    const Stamp stamp = stampOf(path);
    QString reason;
    QHash<QString, QVariant> settings;
    if (!read(path, settings, reason)) {
        if (error)
            *error = reason;
        return false;
    }
    mPath = path;
    mStamp = stamp;
    mSettings = settings;
    return true;
}

void ConfigStore::refresh() {
    if (mPath.isEmpty())
        return;
    const Stamp stamp = stampOf(mPath);
    if (stamp == mStamp)
        return;
    mStamp = stamp;
    QString error;
    if (!read(mPath, mSettings, error))
        Logger(nullptr, "ERROR") << "Configuration unchanged:" << error;
}

QVariant ConfigStore::value(const QString& key) {
    const QMutexLocker locker(&mMutex);
    refresh();
    return mSettings.value(key);
}

bool ConfigStore::setValue(const QString& key, const QVariant& value, QString* error) {
    const QMutexLocker locker(&mMutex);
    QString reason;
    if (mPath.isEmpty()) {
        reason = QStringLiteral("no configuration file is open");
    } else {
        QSettings file(mPath, QSettings::IniFormat);
        file.setValue(key, value);
        file.sync();
        if (file.status() != QSettings::NoError)
            reason = QStringLiteral("%1: cannot be written").arg(mPath);
    }
    if (error)
        *error = reason;
    refresh();
    return reason.isEmpty();
}
