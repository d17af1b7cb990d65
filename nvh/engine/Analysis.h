#pragma once

#include "nvh/engine/RunOutcome.h"

#include <QObject>
#include <QString>
#include <QStringList>

class ChildProcess;

// The analysis program on a finished recording. Main thread; nothing blocks.
class Analysis : public QObject {
    Q_OBJECT
public:
    // The process becomes a child of the parent, which outlives this object.
    explicit Analysis(QObject* parent);

    // The program's path.
    static QString program();

    // Starts it; ended() or failed() follows. It is killed after that many milliseconds.
    void start(const QStringList& arguments, int longestMs);
    // From start() to the program's end.
    bool isActive() const;
    // How the last one ended, from ended() or failed() on.
    const AnalysisOutcome& outcome() const { return mOutcome; }

signals:
    // The program has ended.
    void ended();
    // It could not be started, and nothing follows; or it has crashed, and ended() follows.
    void failed();

private:
    void conclude();
    void heedError();

    ChildProcess* mProcess = nullptr;  // made at the first start
    AnalysisOutcome mOutcome;
};
