// The configuration and the log that applications use.

#include "tests/support/Files.h"
#include "tests/support/Rows.h"

#include <HelixDash/services/ConfigStore.h>
#include <HelixDash/services/ConfigValue.h>
#include <HelixDash/services/Logger.h>
#include <HelixDash/services/SingleShotTimer.h>

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

class TestServices : public QObject {
    Q_OBJECT

private slots:
    void init() {
        mLines.clear();
        Logger::setOutput([this](const QObject* sender, const QString& text, const QString& level) {
            mLines.append(level + (sender ? sender->metaObject()->className() : "-") + text);
        });
        writeFile(mFile, {});
        QVERIFY(ConfigStore::instance().open(mFile));
    }
    void cleanup() { Logger::setOutput({}); }

    void readsSettings_data() {
        const auto row = columns<QByteArray, QString, int, bool, int>("text", "string", "number", "flag", "complaints");
        row("absent", "[other]\nkey=5", "default", 7, true, 0);
        row("number", "[group]\nkey=0", "0", 0, false, 0);
        row("flag", "[group]\nkey=False", "False", 7, false, 1);
        row("text", "[group]\nkey=/tmp/a,b.wav", "/tmp/a,b.wav", 7, true, 2);
    }

    void readsSettings() {
        QFETCH(QByteArray, text);
        const ConfigStringValue string("group/key", "default");
        const ConfigIntValue number("group/key", 7);
        const ConfigBoolValue flag("group/key", true);
        writeFile(mFile, text);
        QTEST(string.value(), "string");
        QTEST(number.value(), "number");
        QTEST(flag.value(), "flag");
        QTEST(int(mLines.size()), "complaints");
    }

    void followsFile() {
        const ConfigStringValue value("group/key", "default");
        writeFile(mFile, "[group]\nkey=one\nother=kept\n");
        QCOMPARE(value.value(), "one");
        // A file that cannot be read changes nothing, and is reported once.
        writeFile(mFile, "[group]\nkey=two\nnonsense\n");
        QCOMPARE(value.value(), "one");
        QCOMPARE(value.value(), "one");
        QCOMPARE(mLines, QStringList("ERROR-Configuration unchanged: " + mFile +
                                     ":3: neither [section] nor key=value: nonsense "));
        QString error;
        QVERIFY(!ConfigStore::instance().open(mFile, &error));
        QVERIFY2(error.startsWith(mFile + ":3: "), qPrintable(error));
        QCOMPARE(value.value(), "one");
        writeFile(mFile, "[group]\nkey=three\nother=kept\n");
        QCOMPARE(value.value(), "three");
        QVERIFY(ConfigStore::instance().setValue("group/key", "four"));
        QCOMPARE(value.value(), "four");
        QCOMPARE(ConfigStringValue("group/other", "").value(), "kept");
        QVERIFY(QFile::remove(mFile));
        QCOMPARE(value.value(), "default");
    }

    void deliversMessageWithLastHandle() {
        {
            Logger first(this, "INFO");
            Logger second = first;
            first << "one" << 2;
            second << QString::fromUtf8("drei") << QStringList{"a", "b"} << quint64(5);
            QCOMPARE(mLines, QStringList());
        }
        QCOMPARE(mLines, QStringList("INFOTestServicesone 2 drei a b 5 "));
        Logger(nullptr, "WARN");
        QCOMPARE(mLines.last(), "WARN-");
        static QStringList sunk;
        const auto sink = [](const QObject*, const QString& text, const QString& level, bool flag) {
            sunk.append(level + text + (flag ? "flag" : ""));
        };
        Logger(this, "ERROR", true, sink) << "\xe4";
        QCOMPARE(sunk, QStringList(QString::fromUtf8("ERRORä flag")));
        QCOMPARE(mLines.size(), 2);
    }

    void timerServesWhatItWasArmedForLast() {
        SingleShotTimer timer;
        QTimer replaced;
        QTimer wanted;
        QElapsedTimer clock;
        clock.start();
        timer.start(1, &replaced, qOverload<>(&QTimer::start));
        timer.start(30, &wanted, qOverload<>(&QTimer::start));
        QTRY_VERIFY(wanted.isActive());
        QVERIFY(clock.elapsed() >= 30);
        QVERIFY(!replaced.isActive());
    }

    void takesMessagesFromManyThreads() {
        QThreadPool threads;
        threads.setMaxThreadCount(4);
        for (int number = 0; number < 4; ++number) {
            threads.start([] {
                for (int line = 0; line < 500; ++line)
                    Logger(nullptr, "INFO") << "line" << line;
            });
        }
        QVERIFY(threads.waitForDone(5000));
        QCOMPARE(mLines.size(), 2000);
        QCOMPARE(mLines.count("INFO-line 499 "), 4);
    }

private:
    QTemporaryDir mDirectory;
    QString mFile = mDirectory.filePath("settings.ini");
    QStringList mLines;
};

QTEST_GUILESS_MAIN(TestServices)
#include "tst_services.moc"
