#include "tests/support/Journal.h"

#include <HelixDash/services/Logger.h>

#include <QMetaMethod>
#include <QThread>

Journal::Journal() {
    Logger::setOutput(
        [this](const QObject*, const QString& text, const QString& level) { append(level + QLatin1Char(' ') + text); });
}

Journal::~Journal() {
    Logger::setOutput({});
}

void Journal::watch(QObject* sender) {
    const QMetaObject* meta = sender->metaObject();
    const QMetaMethod plain = metaObject()->method(metaObject()->indexOfSlot("record()"));
    const QMetaMethod withText = metaObject()->method(metaObject()->indexOfSlot("recordText(QString)"));
    for (int index = meta->methodOffset(); index < meta->methodCount(); ++index) {
        const QMetaMethod method = meta->method(index);
        if (method.methodType() == QMetaMethod::Signal)
            connect(sender, method, this, method.parameterTypes() == QByteArrayList{"QString"} ? withText : plain);
    }
}

QStringList Journal::entries() const {
    const QMutexLocker locker(&mMutex);
    return mEntries;
}

QStringList Journal::elsewhere() const {
    const QMutexLocker locker(&mMutex);
    return mElsewhere;
}

QStringList Journal::withPrefix(const QString& prefix) const {
    QStringList found = entries();
    found.erase(std::remove_if(found.begin(), found.end(),
                               [&prefix](const QString& entry) { return !entry.startsWith(prefix); }),
                found.end());
    return found;
}

void Journal::clear() {
    const QMutexLocker locker(&mMutex);
    mEntries.clear();
    mElsewhere.clear();
}

void Journal::record() {
    append(QStringLiteral("> ") + QString::fromLatin1(sender()->metaObject()->method(senderSignalIndex()).name()));
}

void Journal::recordText(const QString& text) {
    append(QStringLiteral("> %1 %2").arg(
        QString::fromLatin1(sender()->metaObject()->method(senderSignalIndex()).name()), text));
}

void Journal::append(const QString& entry) {
    const QMutexLocker locker(&mMutex);
    (QThread::currentThread() == thread() ? mEntries : mElsewhere).append(entry);
}
