// Faults strike by their seed and leave one another alone; what each does is seen on the wire, in tst_gatewaysim.

#include "bench/gateway/Faults.h"

#include <QtTest>

class TestFaults : public QObject {
    Q_OBJECT

private slots:
    void strikeBySeed_data();
    void strikeBySeed();

private:
    // What becomes of 1000 datagrams: "x" for each that is struck, "." for the others. What comes out is added to
    // `out`.
    static QString pass(const Faults::Probabilities& probabilities, quint64 seed, Fault watched, QByteArray* out = {});
};

QString TestFaults::pass(const Faults::Probabilities& probabilities, quint64 seed, Fault watched, QByteArray* out) {
    using Channel = Faults::Channel;
    const auto channel = nameOf(watched).startsWith("ack-") ? Channel::Acknowledgements : Channel::Datagrams;
    Faults faults(probabilities, seed, 100);
    QString struck;
    for (int i = 0; i < 1000; ++i) {
        const int before = faults.strikes(watched);
        for (const auto& parcel : faults.strike(channel, QByteArray(26, '\1'))) {
            if (out)
                out->append(parcel.bytes);
        }
        struck += faults.strikes(watched) > before ? 'x' : '.';
    }
    return struck;
}

void TestFaults::strikeBySeed_data() {
    QTest::addColumn<int>("number");
    for (int i = 0; i < int(kFaultCount); ++i)
        QTest::newRow(qPrintable(nameOf(Fault(i)))) << i;
}

void TestFaults::strikeBySeed() {
    QFETCH(int, number);
    Faults::Probabilities probabilities{};
    probabilities[size_t(number)] = 0.3;
    QByteArray out, again;
    const QString struck = pass(probabilities, 1, Fault(number), &out);
    QVERIFY2(struck.count('x') > 240 && struck.count('x') < 360, qPrintable(struck));
    QCOMPARE(pass(probabilities, 1, Fault(number), &again), struck);
    QCOMPARE(again, out);
    QVERIFY(pass(probabilities, 2, Fault(number)) != struck);
    for (size_t other = 0; other < kFaultCount; ++other) {
        if (int(other) != number && !nameOf(Fault(other)).endsWith("-lose"))
            probabilities[other] = 1.0;
    }
    QCOMPARE(pass(probabilities, 1, Fault(number)), struck);
}

QTEST_GUILESS_MAIN(TestFaults)
#include "tst_faults.moc"
