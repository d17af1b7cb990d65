#include "host/trace/TraceFile.h"
#include "host/trace/TracePlayer.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

// Every test uses value names of its own: values live as long as the process.
class TestTracePlayer : public QObject {
    Q_OBJECT

private slots:
    void setsEveryRowInOrderNotTooEarlyAndHoweverLate();
    void stopsAtOnceEvenFromASlot();

private:
    static std::shared_ptr<const TraceFile> trace(QByteArray text) {
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        return std::make_shared<const TraceFile>(*TraceFile::read(buffer, QStringLiteral("trace"), nullptr));
    }
    static DataValue* value(const char* name) { return DataValueManager::instance().find(QString::fromLatin1(name)); }
};

void TestTracePlayer::setsEveryRowInOrderNotTooEarlyAndHoweverLate() {
    TracePlayer player;
    QSignalSpy finished(&player, &TracePlayer::finished);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(player.start(trace("t_s,late1,late2\n0,1,\n0.01,2,true\n0.02,invalid,\n0.2,,false\n"), 0.0, nullptr));
    QStringList changes;
    for (const char* name : {"late1", "late2"}) {
        connect(value(name), &DataValue::valueChanged, &player, [&changes](DataValue* changed) {
            changes << changed->name() + QLatin1Char('=') + changed->toString();
        });
    }
    QThread::msleep(50);
    QVERIFY(finished.wait(1000));
    QVERIFY(clock.elapsed() >= 200);
    QCOMPARE(changes, QStringList({"late1=1", "late1=2", "late2=true", "late1=Invalid", "late2=false"}));
    QVERIFY(!player.isPlaying());
}

void TestTracePlayer::stopsAtOnceEvenFromASlot() {
    TracePlayer player;
    QSignalSpy finished(&player, &TracePlayer::finished);
    const auto twoRows = trace("t_s,stopped\n0,1\n0.001,2\n");
    QVERIFY(player.start(twoRows, 0.0, nullptr));
    player.stop();
    QCoreApplication::processEvents();
    QVERIFY(!value("stopped")->isValid());

    QVERIFY(player.start(twoRows, 0.0, nullptr));
    QSignalSpy changed(value("stopped"), &DataValue::valueChanged);
    connect(value("stopped"), &DataValue::valueChanged, &player, &TracePlayer::stop);
    QThread::msleep(5);
    QVERIFY(changed.wait(1000));
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(finished.count(), 0);
}

QTEST_GUILESS_MAIN(TestTracePlayer)
#include "tst_traceplayer.moc"
