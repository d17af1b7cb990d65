#pragma once

#include "tests/support/Journal.h"
#include "tests/support/PrivateMachine.h"

#include <QFileInfo>
#include <QTest>

#include <memory>

// A test of the recorder: for each test function the machine is as at the start, and the journal is empty.
class MachineTest : public QObject {
    Q_OBJECT

protected slots:
    void init() {
        mMachine.reset();
        mJournal = std::make_unique<Journal>();
    }
    void cleanup() { mJournal.reset(); }

protected:
    bool waitFor(const QString& entry) const {
        return QTest::qWaitFor([this, &entry] { return mJournal->has(entry); }, 10000);
    }
    // Some tens of milliseconds of sound.
    static bool hasSound() { return QFileInfo(PrivateMachine::kCapture).size() > 20000; }
    static bool recorderWrites() { return QTest::qWaitFor(hasSound); }

    PrivateMachine mMachine;
    std::unique_ptr<Journal> mJournal;
};
