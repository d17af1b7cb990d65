// The log of one vehicle signal, and the trace of scopes.

#include "nvh/capture/NvhValueLogger.h"
#include "nvh/capture/ScopeBracesPrinter.h"
#include "tests/support/MachineTest.h"
#include "tests/support/Rows.h"

#include <HelixDash/values/DataValueManager.h>
#include <HelixDash/views/DisplayView.h>

#include <QApplication>
#include <QSignalSpy>

namespace {

QString gLog = QStringLiteral("/tmp/nvh-rpm.txt");

RealDataValue* rpm() {
    return DataValueManager::instance().find<RealDataValue>(QStringLiteral("VAPI_motorRPM"));
}

}  // namespace

class TestValueLogger : public MachineTest {
    Q_OBJECT

private slots:
    void logsChanges() {
        NvhValueLogger logger(gLog, rpm());
        QSignalSpy finished(&logger, &NvhValueLogger::finished);
        QVERIFY(!QFileInfo::exists(gLog));
        logger.startLogging();
        logger.startLogging();
        QVERIFY(QFileInfo::exists(gLog));
        // On one thread each change is written when it comes.
        for (double value : {37.9, -2.5, 37.0, 37.0, 3e12, -0.9})
            setValue("VAPI_motorRPM", value);
        logger.stopLogging();
        setValue("VAPI_motorRPM", 5.0);
        QCOMPARE(finished.size(), 1);
        QCOMPARE(mJournal->entries().last(), "INFO stopLogging  Stopping DataValue Logging.... ");

        qint64 last = 0;
        QStringList values;
        const QStringList lines = QString(readFile(gLog)).split('\n');
        for (const QString& line : lines.mid(0, lines.size() - 1)) {
            QVERIFY(line.section(", ", 0, 0).toLongLong() >= last);
            last = line.section(", ", 0, 0).toLongLong();
            values.append(line.section(", ", 1));
        }
        QCOMPARE(values, QStringList({"37", "-2", "37", "2147483647", "0"}));
        QCOMPARE(lines.last(), QString());
    }

    void countsMillisecondsOnItsThread() {
        QThread thread;
        NvhValueLogger logger(gLog, rpm());
        logger.moveToThread(&thread);
        connect(&thread, &QThread::started, &logger, &NvhValueLogger::startLogging, Qt::QueuedConnection);
        QElapsedTimer clock;
        clock.start();
        thread.start();
        QTRY_VERIFY(QFileInfo::exists(gLog));
        // It has the value's changes when its thread takes the next call.
        QMetaObject::invokeMethod(
            &logger, [] {}, Qt::BlockingQueuedConnection);
        const qint64 logging = clock.elapsed();
        QTRY_VERIFY(clock.elapsed() > logging + 20);
        setValue("VAPI_motorRPM", 1000.5);
        QMetaObject::invokeMethod(&logger, &NvhValueLogger::stopLogging, Qt::QueuedConnection);
        QVERIFY(thread.wait(5000));
        const qint64 logged = readFile(gLog).split(',').first().toLongLong();
        QVERIFY2(logged >= 20 && logged <= clock.elapsed(), qPrintable(QString::number(logged)));
        QCOMPARE(mJournal->elsewhere().size(), 2);
    }

    void writesNothingOutsideLogging_data() {
        const auto row = columns<QString, bool, QStringList>("file", "stoppedFirst", "errors");
        row("stopped before it started", gLog, true, {});
        row("not creatable", "/tmp/none/log.txt", false,
            QStringList("ERROR OpenValueStream : Cannot Create File:  /tmp/none/log.txt "));
    }

    void writesNothingOutsideLogging() {
        auto [file, stoppedFirst] = cells<QString, bool>();
        NvhValueLogger logger(file, rpm());
        QSignalSpy finished(&logger, &NvhValueLogger::finished);
        logger.writeToFile();
        if (stoppedFirst)
            logger.stopLogging();
        logger.startLogging();
        setValue("VAPI_motorRPM", 1234.0);
        QCOMPARE(finished.size(), stoppedFirst ? 1 : 0);
        logger.stopLogging();
        QTEST(mJournal->withPrefix("ERROR"), "errors");
        QVERIFY(!QFileInfo::exists(file));
    }

    void reportsFullDisk() {
        QString file = "/tmp/nvh-rpm.txt";
        NvhValueLogger logger(file, rpm());
        logger.startLogging();
        setValue("VAPI_motorRPM", 4321.0);
        const FullDisk full;
        logger.stopLogging();
        QCOMPARE(mJournal->withPrefix("ERROR"), QStringList("ERROR writeToFile  Can't Write to File! "));
    }

    void showsNestedScopes() {
        nvhLogFile.close();
        nvhLogFile.open("/tmp/NVHLog.txt");
        DisplayView view;
        view.setViewName("V");
        {
            const ScopeBracesPrinter outer(view, "start");
            const ScopeBracesPrinter inner(*this, "init");
            QCOMPARE(readFile("/tmp/NVHLog.txt"), QByteArray("V.start:\n\tinit:\n"));
        }
        QCOMPARE(nvhLogIndent, std::string());
    }
};

QTEST_MAIN(TestValueLogger)
#include "tst_valuelogger.moc"
