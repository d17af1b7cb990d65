#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QThread>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class ChildProcess;
class NVHAppView;

// The server's answer to the question for the list of static vehicle tests.
struct VdtAnswer {
    QString text;          // all of it, for the log and the driver: as much as is shown of an answer
    bool isList = false;   // the server says that this is the list; else the built-in one counts
    QByteArray bytes;      // what holds the list's JSON text, the built-in one where there is no other
    qsizetype listAt = 0;  // from where on; a long list is not copied here
    QString listText;      // the list, as much as is shown
    QString whyCut;        // why the list is not complete, for the log; empty if it is
};

// Fetches the list of static vehicle tests from the factory data server and reads it. UI thread; nothing blocks but
// destroying it, which kills a download and waits until a list that is being read is read: some tenths of a second for
// the largest.
class VdtDownload : public QObject {
public:
    // The view outlives this object.
    explicit VdtDownload(NVHAppView& view);
    ~VdtDownload() override;

    // The command line that fetches the list.
    static QString command();

    // Starts that command; when it has ended, or cannot be started, the view's initVdtTable() is called. False, with a
    // log line, if a download is under way already.
    bool start(const QString& command);

    // The answer of the download, once: nothing where none is under way. One that has not ended is given up.
    std::optional<VdtAnswer> takeAnswer();

    // What a list holds, and why it cannot be read ("line 1: …"; empty if it can).
    using Read = std::function<void(const QVariantMap& tests, const QString& whyNot)>;
    // Reads the list and calls back: at once, or later for a long one, which is read on a thread of its own. A
    // list that is still being read when another download begins is not called back for.
    void read(const VdtAnswer& answer, Read callback);

private:
    struct Result {
        QVariantMap tests;
        QString whyNot;
    };
    static Result parsed(const QByteArray& list);

    NVHAppView& mView;
    ChildProcess* mVdtStaticDownloadProcess = nullptr;  // a child of the view; while a download is under way
    std::vector<std::unique_ptr<QThread>> mReaders;
    quint64 mNewest = 0;  // number of the download or list that came last
};
