// Logs as candump writes them, and as they come out of a torn copy.

#include "bench/gateway/CandumpLog.h"
#include "tests/support/Rows.h"

#include <QBuffer>
#include <QtTest>

namespace {

// "TIME BUS ID DATA" for each frame, what was left out, and the length; or the error.
QString read(QByteArray text, const CandumpLog::Buses& buses = {}) {
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    QString error;
    auto log = CandumpLog::read(buffer, "drive.log", buses, &error);
    if (!log)
        return error;
    QStringList seen;
    for (const CanFrame& frame : log->recording().frames) {
        const QByteArray data(reinterpret_cast<const char*>(frame.data.data()), frame.length);
        seen += QString::asprintf("%d %d %x %s", int(frame.us), frame.address.bus, frame.address.id,
                                  data.toHex().constData());
    }
    return (seen << log->leftOut() << QString::number(log->recording().passUs)).join('|');
}

}  // namespace

class TestCandumpLog : public QObject {
    Q_OBJECT

private slots:
    void readsFrames_data() {
        const auto row = columns<QString>("frames");
        row("(1436509052.249713) can0 244#0000000000000100\n", "0 0 244 0000000000000100||1000000");
        row("\r\n(0.0) vcan12 7FF#\r\n(0.000001)   can1 0ab#c0ffEE  T", "0 12 7ff |1 1 ab c0ffee||2");
        row("(7.5) can0 001#\n(7.25) can1 002#\n(8.250001) can0 003#\n(7.5) can1 004#\n",
            "0 1 2 |250000 0 1 |250000 1 4 |1000001 0 3 ||1333334");
        row("(1.0) chassis 001#\n(1.0) can1 002#\n(1.0) can9 003#\n", "0 5 1 |0 6 2 |0 9 3 ||1000000");
        row("(1.0) can0 12345678#0102\n(1.0) can0 20000004#0000000000000000\n(1.0) can0 244#R\n(1.0) can0 244#R8\n"
            "(1.0) can0 244##0\n(1.0) can0 12345678##1AABB\n(1.0) can0 12345678#R2\n(1.0) can0 244#\n",
            "0 0 244 |1 extended id, 1 error message, 3 remote frames, 2 CAN FD frames|1000000");
        row("(1.0) can0 244#R\n", "drive.log: no frame to forward; left out: 1 remote frame");
        row("(1.0) chassis 001#\n", "drive.log: no frame of interface can1");
    }

    void readsFrames() {
        const QByteArray text = QTest::currentDataTag();
        QFETCH(QString, frames);
        const CandumpLog::Buses buses{{"chassis", 5}, {"can1", 6}};
        QCOMPARE(read(text, text.contains("chassis") ? buses : CandumpLog::Buses{}), frames);
    }

    void refusesADamagedLine_data() {
        const auto row = columns<QByteArray, QString>("line", "reason");
        const auto refused = [&row](const QByteArray& line, const char* reason) {
            row(line.left(40).constData(), line, reason);
        };
        refused("(1436509052.24x) can0 244#00", "wanted is a time such as (1436509052.249713)");
        refused("(2.0) can0 244", "no # between id and data in \"244\"");
        refused("(2.0) can0 24#00", "id \"24\": wanted are three or eight hexadecimal digits");
        refused("(2.0) can0 800#00", "id \"800\" is above 7FF");
        refused("(2.0) can0 244#001", "data \"001\" ends in the middle of a byte");
        refused("(2.0) can0 244#001122334455667788", "is longer than 8 bytes");
        refused("(2.0) can0 244#R9", "remote frame of length \"9\"");
        refused("(2.0) can0 244##1AABBC", "wanted are a digit of flags and up to 64 bytes");
        refused("(2.0) can0 244#00 X", "unexpected \"X\" behind the frame");
        refused("(0.9) can0 244#00", "the time goes back by 1.100000 s");
        refused("(2.0) can256 244#00", "can256 has no bus number from 0 to 255; --bus can256=N gives it one");
        refused("\x1b[2J\xff", "not \"?[2J?\"");
        refused(QByteArray(100'000, 'x'), "too long for a line of a log");
    }

    void refusesADamagedLine() {
        const auto [line, reason] = cells<QByteArray, QString>();
        const QString error = read("(2.0) can0 100#00\n" + line + "\n(2.0) can0 100#00\n");
        QVERIFY2(error.startsWith("drive.log:2: ") && error.contains(reason), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(TestCandumpLog)
#include "tst_candumplog.moc"
