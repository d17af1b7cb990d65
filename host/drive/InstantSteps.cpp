#include "host/drive/InstantSteps.h"

#include "host/screen/Screen.h"
#include "host/screen/ViewTree.h"
#include "host/trace/TracePlayer.h"
#include "host/values/ValueSetter.h"

#include <HelixDash/services/ConfigStore.h>

#include <QImageWriter>
#include <QJsonDocument>
#include <QPixmap>
#include <QSaveFile>

void InstantRun::start() {
    const QString seen = mWork();
    if (seen.isEmpty())
        emit held();
    else
        emit failed(seen);
}

InstantRun::Work InstantSteps::set(const SetStep& step) {
    return [&step] {
        QString reason;
        for (const auto& [name, value] : step.values) {
            if (!ValueSetter::set(name, value, &reason))
                return reason;
        }
        return QString();
    };
}

InstantRun::Work InstantSteps::trace(const TraceStep& step, TracePlayer& player) {
    return [&step, &player] {
        QString reason;
        if (!step.trace)
            player.stop();
        else
            player.start(step.trace, step.from, &reason);
        return reason;
    };
}

InstantRun::Work InstantSteps::config(const ConfigStep& step) {
    return [&step] {
        QString reason;
        for (const auto& [key, value] : step.settings) {
            if (!ConfigStore::instance().setValue(key, value, &reason))
                return reason;
        }
        return QString();
    };
}

InstantRun::Work InstantSteps::grab(const GrabStep& step, Screen& screen) {
    return [&step, &screen] {
        QImageWriter writer(step.path);
        const bool written = writer.write(screen.grab().toImage());
        return written ? QString() : step.path + QStringLiteral(": ") + writer.errorString();
    };
}

InstantRun::Work InstantSteps::tree(const TreeStep& step, Screen& screen) {
    return [&step, &screen] {
        QSaveFile file(step.path);
        const bool written = file.open(QIODevice::WriteOnly) &&
                             file.write(QJsonDocument(ViewTree::describe(screen)).toJson()) > 0 && file.commit();
        return written ? QString() : step.path + QStringLiteral(": ") + file.errorString();
    };
}
