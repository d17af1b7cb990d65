#pragma once

#include "nvh/engine/NVHWorker.h"
#include "tests/support/Journal.h"

// An engine that saves, with all that it and its package manager say in a journal.
struct WatchedEngine : NVHWorker {
    explicit WatchedEngine(Journal& journal, const QString& testType = QStringLiteral("65 MPH"))
        : NVHWorker(AppModeNvh) {
        journal.watch(this);
        journal.watch(&packageManager());
        setTestType(testType);
        setSaveOnlyState(true);
    }
    QString package() { return packageManager().packageName(); }
};
