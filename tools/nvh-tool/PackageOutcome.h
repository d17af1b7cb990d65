#pragma once

#include <QObject>
#include <QString>

class NvhPackageManager;

// Follows a package manager until nothing is under way any more, and knows how it ended.
class PackageOutcome : public QObject {
    Q_OBJECT
public:
    // The manager outlives this object.
    explicit PackageOutcome(NvhPackageManager& manager);

    bool hasFailed() const;
    // Why, and what is left, in one line.
    QString reason() const;
    // What was said for the user last: the server's answer after a success.
    QString feedback() const { return mFeedback; }

signals:
    // Once: nothing is packed, uploaded or posted any more. Not before the event loop has turned.
    void settled();

private:
    void fail(const QString& step);
    void checkLater();

    NvhPackageManager& mManager;
    QString mReason;
    QString mFeedback;
    bool mSettled = false;
};
