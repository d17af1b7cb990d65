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
    void setsEveryRowInOrderHoweverLate();
    void keepsTheTimesOfItsRows();
    void startsAtTheSecondAsked();
    void stopsAtOnce();
    void aSlotMayStopIt();
    void refusesATraceThatDoesNotFit();

private:
    static std::shared_ptr<const TraceFile> trace(QByteArray text) {
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        return std::make_shared<const TraceFile>(*TraceFile::read(buffer, QStringLiteral("trace"), nullptr));
    }
    static DataValue* value(const char* name) { return DataValueManager::instance().find(QString::fromLatin1(name)); }
    // Notes "NAME=value" at every change.
    static void follow(QStringList& changes, DataValue* value) {
        QVERIFY(value);
        QObject::connect(value, &DataValue::valueChanged, value, [&changes](DataValue* changed) {
            changes << changed->name() + QLatin1Char('=') + changed->toString();
        });
    }
};

void TestTracePlayer::setsEveryRowInOrderHoweverLate() {
    TracePlayer player;
    QSignalSpy finished(&player, &TracePlayer::finished);
    QVERIFY(player.start(trace("t_s,late1,late2\n0,1,\n0.01,2,true\n0.02,invalid,\n0.03,,false\n"), 0.0, nullptr));
    QStringList changes;
    follow(changes, value("late1"));
    follow(changes, value("late2"));
    QThread::msleep(50);
    QVERIFY(finished.wait(1000));
    QCOMPARE(changes, QStringList({"late1=1", "late1=2", "late2=true", "late1=Invalid", "late2=false"}));
    QVERIFY(!player.isPlaying());
    QVERIFY(!value("late1")->isValid());
    value("late1")->disconnect();
    value("late2")->disconnect();
}

void TestTracePlayer::keepsTheTimesOfItsRows() {
    TracePlayer player;
    QSignalSpy finished(&player, &TracePlayer::finished);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(player.start(trace("t_s,timed\n0,1.5\n0.2,2.5\n"), 0.0, nullptr));
    QTRY_COMPARE(value("timed")->toString(), QStringLiteral("1.5"));
    QVERIFY(finished.wait(2000));
    QVERIFY(clock.elapsed() >= 200);
    QCOMPARE(value("timed")->toString(), QStringLiteral("2.5"));
}

void TestTracePlayer::startsAtTheSecondAsked() {
    TracePlayer player;
    QVERIFY(player.start(trace("t_s,from\n0,1\n30,2\n600,3\n"), 30.0, nullptr));
    QTRY_COMPARE(value("from")->toString(), QStringLiteral("2"));
    QVERIFY(player.isPlaying());
}

void TestTracePlayer::stopsAtOnce() {
    TracePlayer player;
    QSignalSpy finished(&player, &TracePlayer::finished);
    QVERIFY(player.start(trace("t_s,stopped\n0,1\n"), 0.0, nullptr));
    player.stop();
    QCoreApplication::processEvents();
    QVERIFY(!value("stopped")->isValid());
    QCOMPARE(finished.count(), 0);
}

void TestTracePlayer::aSlotMayStopIt() {
    TracePlayer player;
    QVERIFY(player.start(trace("t_s,slot\n0,1\n0.001,2\n"), 0.0, nullptr));
    QSignalSpy changed(value("slot"), &DataValue::valueChanged);
    connect(value("slot"), &DataValue::valueChanged, &player, &TracePlayer::stop);
    QThread::msleep(5);
    QVERIFY(changed.wait(1000));
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 1);
}

void TestTracePlayer::refusesATraceThatDoesNotFit() {
    DataValueManager::instance().add(QStringLiteral("pedal"), DataValueManager::Type::Bool);
    DataValueManager::instance().add(QStringLiteral("rpm"), DataValueManager::Type::Real);
    TracePlayer player;
    QString error;
    QVERIFY(!player.start(trace("t_s,unmade,pedal\n0,1,1\n"), 0.0, &error));
    QCOMPARE(error, QStringLiteral("pedal is a truth value, the trace gives a whole number"));
    QVERIFY(!value("unmade"));
    QVERIFY(player.start(trace("t_s,rpm,pedal\n0,1,invalid\n"), 0.0, &error));
    QTRY_COMPARE(value("rpm")->toString(), QStringLiteral("1.0"));
}

QTEST_GUILESS_MAIN(TestTracePlayer)
#include "tst_traceplayer.moc"
