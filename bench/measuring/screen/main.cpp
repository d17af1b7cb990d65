// What the recorder's screen costs: time to the first picture and memory beside a bare window with one label, a change
// of mode, and the longest absence from the event loop while it records, saves and uploads, and while a server answers
// with far more than a screen can show. Needs the bench; bench/measure starts both.
//
// The first two are taken in processes of their own, so that each meets the recorder for the first time.

#include "bench/measuring/LoopWatch.h"
#include "bench/measuring/Report.h"
#include "bench/measuring/screen/RecorderScreen.h"
#include "bench/measuring/screen/ServerAnswers.h"
#include "bench/measuring/screen/Waiting.h"
#include "host/setup/HostServices.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int kStarts = 5;
constexpr int kModeChanges = 60;

struct Start {
    double ms = 0.0;
    double residentMb = 0.0;
};

int fail(const QString& reason) {
    std::fprintf(stderr, "nvh-measure-screen: %s\n", qPrintable(reason));
    return 2;
}

double residentMb() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0.0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).simplified().split(' ').first().toDouble() / 1024.0;
    }
    return 0.0;
}

// In a process of its own: prints milliseconds and megabytes.
int startOnce(const QCommandLineParser& parser, bool bare) {
    QElapsedTimer clock;
    clock.start();
    QLabel label(QStringLiteral("NVH"));
    RecorderScreen recorder;
    QString error;
    if (bare) {
        label.resize(Screen::kWidth, Screen::kHeight);
        label.show();
        label.repaint();
        QCoreApplication::processEvents();
    } else {
        if (!recorder.load(parser.value(QStringLiteral("plugin")), parser.value(QStringLiteral("app-dir")), &error))
            return fail(error);
        recorder.showFirstFrame();
    }
    std::printf("%f %f\n", double(clock.nsecsElapsed()) / 1e6, residentMb());
    std::fflush(stdout);
    return 0;
}

Start medianStart(const QStringList& arguments, const QString& kind) {
    std::vector<double> ms;
    std::vector<double> mb;
    for (int round = 0; round < kStarts; ++round) {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(arguments.first(), arguments.mid(1) + QStringList{QStringLiteral("--start"), kind});
        child.waitForFinished();
        const QList<QByteArray> words = child.readAllStandardOutput().simplified().split(' ');
        ms.push_back(words.value(0).toDouble());
        mb.push_back(words.value(1).toDouble());
    }
    return {median(ms), median(mb)};
}

std::vector<Figure> measureStarts(const QStringList& arguments) {
    const Start bare = medianStart(arguments, QStringLiteral("bare"));
    const Start recorder = medianStart(arguments, QStringLiteral("recorder"));
    Figure time;
    time.what = QStringLiteral("LoadPlugin to the first frame");
    time.measured = QStringLiteral("%1 times a bare window").arg(recorder.ms / bare.ms, 0, 'f', 1);
    time.reference = QStringLiteral("%1 ms").arg(bare.ms, 0, 'f', 1);
    time.value = recorder.ms;
    time.unit = QStringLiteral("ms");
    time.atMost = 150.0;
    Figure memory;
    memory.what = QStringLiteral("resident memory over a bare window");
    memory.measured = QStringLiteral("%1 MB").arg(recorder.residentMb, 0, 'f', 1);
    memory.reference = QStringLiteral("%1 MB").arg(bare.residentMb, 0, 'f', 1);
    memory.value = recorder.residentMb - bare.residentMb;
    memory.unit = QStringLiteral("MB");
    return {time, memory};
}

Figure measureModeChanges(RecorderScreen& recorder) {
    std::vector<double> ms;
    for (int change = 1; change <= kModeChanges; ++change)
        ms.push_back(1000.0 * secondsOf([&] { recorder.changeMode(change % 3); }));
    recorder.changeMode(0);
    Figure figure;
    figure.what = QStringLiteral("change of mode, painted");
    figure.measured = QStringLiteral("longest %1 ms").arg(*std::max_element(ms.begin(), ms.end()), 0, 'f', 1);
    figure.value = median(ms);
    figure.unit = QStringLiteral("ms");
    figure.atMost = 50.0;
    return figure;
}

std::vector<Figure> measureSession(RecorderScreen& recorder, LoopWatch<QApplication>& watch, QString& error) {
    watch.forget();
    struct Step {
        const char* slot;
        const char* label;
        const char* text;
        bool mayBlock;
    };
    static constexpr Step kSteps[] = {
        {"startButtonAction", "mTimeLabel", "2 s", false},
        {"stopButtonAction", "mStatusLabel", "Recording done!", true},
        {"saveButtonReleased", "mUploadStatusLabel", "| File Saved!", false},
        {"startButtonAction", "mTimeLabel", "2 s", false},
        {"stopButtonAction", "mStatusLabel", "Recording done!", true},
        {"uploadButtonReleased", "mUploadStatusLabel", "| Files Uploaded: 1", false},
        {"uploadSavedButtonReleased", "mUploadStatusLabel", "| Files Uploaded: 2", false},
    };
    for (const Step& step : kSteps) {
        QTimer::singleShot(0, &watch, [&] {
            if (step.mayBlock)
                watch.excuse();
            recorder.call(step.slot);
        });
        // The label may still show the text of the step before.
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (!waitUntil([&] { return recorder.labelText(step.label) == QLatin1String(step.text); })) {
            error = QStringLiteral("%1: %2 reads \"%3\" instead of \"%4\"")
                        .arg(QLatin1String(step.slot), QLatin1String(step.label), recorder.labelText(step.label),
                             QLatin1String(step.text));
            return {};
        }
    }
    Figure figure;
    figure.what = QStringLiteral("longest absence from the loop, screen");
    figure.measured = QStringLiteral("record, save, record, upload both");
    figure.value = watch.longestMs();
    figure.unit = QStringLiteral("ms");
    figure.atMost = 16.0;
    return {figure};
}

}  // namespace

int main(int argc, char** argv) {
    // Qt would take --plugin for an option of its own.
    const QStringList arguments(argv, argv + argc);
    int ownName = 1;
    LoopWatch<QApplication> application(ownName, argv);
    QCommandLineParser parser;
    HostOptions::addTo(parser);
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("plugin"), QStringLiteral("The recorder's library."), QStringLiteral("FILE.so")},
        {QStringLiteral("app-dir"), QStringLiteral("Directory of its data files."), QStringLiteral("DIR")},
        {QStringLiteral("start"), QStringLiteral("Starts once, and prints milliseconds and megabytes."),
         QStringLiteral("bare|recorder")},
    });
    parser.process(arguments);
    QString error;
    const auto options = HostOptions::read(parser, &error);
    HostServices services;
    if (!options || !services.open(*options, &error))
        return fail(error);
    if (parser.isSet(QStringLiteral("start")))
        return startOnce(parser, parser.value(QStringLiteral("start")) == QLatin1String("bare"));

    std::vector<Figure> figures = measureStarts(arguments);
    RecorderScreen recorder;
    if (!recorder.load(parser.value(QStringLiteral("plugin")), parser.value(QStringLiteral("app-dir")), &error))
        return fail(error);
    recorder.showFirstFrame();
    figures.push_back(measureModeChanges(recorder));
    services.startTrace();
    bool allWell = true;
    for (auto* measure : {&measureSession, &measureServerAnswers}) {
        QString reason;
        for (const Figure& figure : measure(recorder, application, reason))
            figures.push_back(figure);
        if (!reason.isEmpty())
            fail(reason);
        allWell = allWell && reason.isEmpty();
    }
    for (const Figure& figure : figures) {
        printFigure(figure);
        allWell = allWell && figure.asWanted();
    }
    return allWell ? 0 : 1;
}
