#include "host/trace/TraceFile.h"
#include "host/trace/TracePlayer.h"
#include "host/trace/TraceSeries.h"
#include "tests/support/Rows.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

class TestTrace : public QObject {
    Q_OBJECT

private slots:
    void refusesWhatCannotBeRead_data() {
        const auto row = columns<QByteArray, QString>("text", "error");
        const std::pair<const char*, const char*> rows[] = {
            {"", "1: there is no header line"},
            {"time,A\n", "1: the header begins with \"time\" instead of t_s"},
            {"t_s\n0\n", "1: the header names no value beside t_s"},
            {"t_s,A,,B\n", "1: column 3 has no name"},
            {"t_s,A,A\n", "1: A is named twice"},
            {"t_s,A,B\n0,1,2\n1,2\n", "3: 2 cells where the header has 3"},
            {"t_s,A\n0,1,5\n", "2: 3 cells where the header has 2"},
            {"t_s,A\n,1\n", "2: \"\" is no time in seconds"},
            {"t_s,A\nnan,1\n", "2: \"nan\" is no time in seconds"},
            {"t_s,A\n1e999,1\n", "2: \"1e999\" is no time in seconds"},
            {"t_s,A\n-0.1,1\n", "2: time -0.1 is negative"},
            {"t_s,A\n0,1\n\n0,2\n", "4: time 0 does not rise after 0"},
            {"t_s,A\n0,inf\n", "2: \"inf\" for A is neither a number, true, false nor invalid"},
            {"t_s,A\n0,true\n1,\n2,1\n", "4: \"1\" for A, which held true or false before"},
            {"t_s,A\n0,1.5\n1,false\n", "3: \"false\" for A, which held numbers before"},
        };
        for (const auto& [text, error] : rows)
            row(error, QByteArray(text), QStringLiteral("drive.csv:") + QLatin1String(error));
    }

    void refusesWhatCannotBeRead() {
        QFETCH(QByteArray, text);
        QString error;
        QVERIFY(!read(text, &error));
        QTEST(error, "error");
    }

    void toleratesWhatLoggersWrite() {
        const auto trace = read("\xEF\xBB\xBFt_s, A ,B\r\n\r\n0,1.5,\r\n 0.25 ,invalid, true\r\n1e1,,false");
        QVERIFY(trace);
        QCOMPARE(trace->rowCount(), 3);
        QCOMPARE(trace->columnOf(QStringLiteral("B")), 1);
        QCOMPARE(trace->columnOf(QStringLiteral("C")), -1);
        QCOMPARE(trace->timeOf(1), 0.25);
        QCOMPARE(trace->duration(), 10.0);
        using State = TraceFile::Cell::State;
        const State expected[3][2] = {
            {State::Valid, State::Unchanged}, {State::Invalid, State::Valid}, {State::Unchanged, State::Valid}};
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 2; ++column)
                QCOMPARE(trace->cell(row, column).state, expected[row][column]);
        }
        QCOMPARE(trace->cell(0, 0).number, 1.5);
        QCOMPARE(trace->cell(1, 1).number, 1.0);
    }

    void infersColumnTypes() {
        const auto trace = read(
            "t_s,whole,point,exponent,over32bit,truth,never,overthenpoint,pointthenover\n"
            "0,1,1,1,3,invalid,invalid,3000000000,1.5\n"
            "1,-2,2.0,2e3,3000000000,true,,1,3000000000\n"
            "2,invalid,3,3,-2147483649,false,,1.5,1\n");
        QVERIFY(trace);
        using Type = TraceFile::Type;
        const Type expected[] = {Type::Int,  Type::Real, Type::Real, Type::Real,
                                 Type::Bool, Type::None, Type::Real, Type::Real};
        for (const TraceFile::Column& column : trace->columns()) {
            QVERIFY2(column.type == expected[trace->columnOf(column.name)], qPrintable(column.name));
            QCOMPARE(column.tooLargeLine, column.name == "over32bit" ? 3 : 0);
        }
    }

    void followsOneColumn() {
        const auto trace = read("t_s,B,A\n0,1,\n1,1,10\n2,1,\n3,1,30\n4,1,invalid\n5,1,7\n");
        QVERIFY(trace);
        const TraceSeries series(*trace, 1);
        const auto variant = [](std::optional<double> number) { return number ? QVariant(*number) : QVariant(); };
        QVariantList values;
        QVariantList interpolated;
        for (const double seconds : {0.9, 1.0, 2.5, 3.5, 4.5, 99.0}) {
            values << variant(series.valueAt(seconds));
            interpolated << variant(series.interpolatedAt(seconds));
        }
        QCOMPARE(values, QVariantList({QVariant(), 10.0, 10.0, 30.0, QVariant(), 7.0}));
        QCOMPARE(interpolated, QVariantList({QVariant(), 10.0, 25.0, 30.0, QVariant(), 7.0}));
    }

    // Values live as long as the process: each test that plays has names of its own.
    void setsEveryRowInOrderNotTooEarlyAndHoweverLate() {
        TracePlayer player;
        QSignalSpy finished(&player, &TracePlayer::finished);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(player.start(shared("t_s,late1,late2\n0,1,\n0.01,2,true\n0.02,invalid,\n0.2,,false\n"), 0.0, nullptr));
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

    void stopsAtOnceEvenFromASlot() {
        TracePlayer player;
        QSignalSpy finished(&player, &TracePlayer::finished);
        const auto twoRows = shared("t_s,stopped\n0,1\n0.001,2\n");
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

private:
    static std::optional<TraceFile> read(QByteArray text, QString* error = nullptr) {
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        return TraceFile::read(buffer, QStringLiteral("drive.csv"), error);
    }
    static std::shared_ptr<const TraceFile> shared(const QByteArray& text) {
        return std::make_shared<const TraceFile>(*read(text));
    }
    static DataValue* value(const char* name) { return DataValueManager::instance().find(QString::fromLatin1(name)); }
};

QTEST_GUILESS_MAIN(TestTrace)
#include "tst_trace.moc"
