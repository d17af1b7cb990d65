#include "host/trace/TraceFile.h"
#include "host/trace/TraceSeries.h"

#include <QBuffer>
#include <QTest>

class TestTraceFile : public QObject {
    Q_OBJECT

private slots:
    void refusesWhatCannotBeRead_data();
    void refusesWhatCannotBeRead();
    void toleratesWhatLoggersWrite();
    void infersColumnTypes_data();
    void infersColumnTypes();
    void followsOneColumn_data();
    void followsOneColumn();

private:
    static std::optional<TraceFile> read(QByteArray text, QString* error = nullptr) {
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        return TraceFile::read(buffer, QStringLiteral("drive.csv"), error);
    }
};

void TestTraceFile::refusesWhatCannotBeRead_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");

    QTest::newRow("empty") << QByteArray() << "drive.csv:1: there is no header line";
    QTest::newRow("header") << QByteArray("time,A\n") << "drive.csv:1: the header begins with \"time\" instead of t_s";
    QTest::newRow("time only") << QByteArray("t_s\n0\n") << "drive.csv:1: the header names no value beside t_s";
    QTest::newRow("no name") << QByteArray("t_s,A,,B\n") << "drive.csv:1: column 3 has no name";
    QTest::newRow("twice") << QByteArray("t_s,A,A\n") << "drive.csv:1: A is named twice";
    QTest::newRow("missing cell") << QByteArray("t_s,A,B\n0,1,2\n1,2\n")
                                  << "drive.csv:3: 2 cells where the header has 3";
    QTest::newRow("extra cell") << QByteArray("t_s,A\n0,1,5\n") << "drive.csv:2: 3 cells where the header has 2";
    QTest::newRow("no time") << QByteArray("t_s,A\n,1\n") << "drive.csv:2: \"\" is no time in seconds";
    QTest::newRow("nan time") << QByteArray("t_s,A\nnan,1\n") << "drive.csv:2: \"nan\" is no time in seconds";
    QTest::newRow("huge time") << QByteArray("t_s,A\n1e999,1\n") << "drive.csv:2: \"1e999\" is no time in seconds";
    QTest::newRow("before start") << QByteArray("t_s,A\n-0.1,1\n") << "drive.csv:2: time -0.1 is negative";
    QTest::newRow("same time") << QByteArray("t_s,A\n0,1\n\n0,2\n") << "drive.csv:4: time 0 does not rise after 0";
    QTest::newRow("word") << QByteArray("t_s,A\n0,fast\n")
                          << "drive.csv:2: \"fast\" for A is neither a number, true, false nor invalid";
    QTest::newRow("infinity") << QByteArray("t_s,A\n0,inf\n")
                              << "drive.csv:2: \"inf\" for A is neither a number, true, false nor invalid";
    QTest::newRow("mixed") << QByteArray("t_s,A\n0,true\n1,\n2,1\n")
                           << "drive.csv:4: \"1\" for A, which held true or false before";
    QTest::newRow("mixed back") << QByteArray("t_s,A\n0,1.5\n1,false\n")
                                << "drive.csv:3: \"false\" for A, which held numbers before";
}

void TestTraceFile::refusesWhatCannotBeRead() {
    QFETCH(QByteArray, text);
    QString error;
    QVERIFY(!read(text, &error));
    QTEST(error, "error");
}

void TestTraceFile::toleratesWhatLoggersWrite() {
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

void TestTraceFile::infersColumnTypes_data() {
    QTest::addColumn<QByteArray>("cells");
    QTest::addColumn<int>("type");
    QTest::newRow("whole") << QByteArray("1 -2 invalid 3") << int(TraceFile::Type::Int);
    QTest::newRow("point") << QByteArray("1 2.0 3") << int(TraceFile::Type::Real);
    QTest::newRow("exponent") << QByteArray("1 2e3") << int(TraceFile::Type::Real);
    QTest::newRow("over 32 bit") << QByteArray("3000000000 1") << int(TraceFile::Type::Real);
    QTest::newRow("truth") << QByteArray("invalid true false") << int(TraceFile::Type::Bool);
    QTest::newRow("never given") << QByteArray("invalid") << int(TraceFile::Type::None);
}

void TestTraceFile::infersColumnTypes() {
    QFETCH(QByteArray, cells);
    QByteArray text = "t_s,A\n";
    int second = 0;
    for (const QByteArray& cell : cells.split(' '))
        text += QByteArray::number(second++) + ',' + cell + '\n';
    const auto trace = read(text);
    QVERIFY(trace);
    QTEST(int(trace->columns().front().type), "type");
}

void TestTraceFile::followsOneColumn_data() {
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("interpolated");
    QTest::newRow("before the first") << 0.9 << QVariant() << QVariant();
    QTest::newRow("at the first") << 1.0 << QVariant(10.0) << QVariant(10.0);
    QTest::newRow("over an empty cell") << 2.5 << QVariant(10.0) << QVariant(25.0);
    QTest::newRow("until invalid") << 3.5 << QVariant(30.0) << QVariant(30.0);
    QTest::newRow("invalid") << 4.5 << QVariant() << QVariant();
    QTest::newRow("after the last") << 99.0 << QVariant(7.0) << QVariant(7.0);
}

void TestTraceFile::followsOneColumn() {
    QFETCH(double, seconds);
    const auto trace = read("t_s,B,A\n0,1,\n1,1,10\n2,1,\n3,1,30\n4,1,invalid\n5,1,7\n");
    QVERIFY(trace);
    const TraceSeries series(*trace, 1);
    const auto variant = [](std::optional<double> number) { return number ? QVariant(*number) : QVariant(); };
    QTEST(variant(series.valueAt(seconds)), "value");
    QTEST(variant(series.interpolatedAt(seconds)), "interpolated");
}

QTEST_APPLESS_MAIN(TestTraceFile)
#include "tst_tracefile.moc"
