#pragma once

#include <QMutex>
#include <QObject>
#include <QStringList>

// What happened, in its order: the log's lines as "LEVEL text" and the signals of watched objects as "> name text".
// Lines from other threads stand apart, since nothing says when they come. UI thread.
class Journal : public QObject {
    Q_OBJECT
public:
    // Takes the process's log, and gives it back at the end.
    Journal();
    ~Journal() override;

    // From now on records every signal that the object's own class declares.
    void watch(QObject* sender);

    QStringList entries() const;
    QStringList elsewhere() const;
    bool has(const QString& entry) const { return entries().contains(entry); }
    int count(const QString& entry) const { return int(entries().count(entry)); }
    // Those that begin so.
    QStringList withPrefix(const QString& prefix) const;
    void clear();

private slots:
    void record();
    void recordText(const QString& text);

private:
    void append(const QString& entry);

    mutable QMutex mMutex;
    QStringList mEntries;
    QStringList mElsewhere;
};
