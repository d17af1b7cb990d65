// The traces of the bench: made again by the program, and checked against the equation of motion by hand.

#include "tests/bench/ProgramRun.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <optional>

namespace {

ProgramRun driveTrace(const QStringList& arguments) {
    return ProgramRun::of(NVH_BIN_DIR "/drive-trace", arguments);
}

}  // namespace

class TestDriveTrace : public QObject {
    Q_OBJECT

private slots:
    void makesTheTracesOfTheTree_data();
    void makesTheTracesOfTheTree();
    void obeysTheEquationOfMotion_data();
    void obeysTheEquationOfMotion();
    void passesOtherColumnsOn();
    void refusesWhatIsNoDrive_data();
    void refusesWhatIsNoDrive();

private:
    QString cycle(const QByteArray& content) const {
        QFile out(mPlace.filePath("cycle.csv"));
        return out.open(QIODevice::WriteOnly) && out.write(content) == content.size() ? out.fileName() : QString();
    }

    QTemporaryDir mPlace;
};

void TestDriveTrace::makesTheTracesOfTheTree_data() {
    QTest::addColumn<QString>("cycle");
    QTest::addColumn<QString>("trace");
    const QDir traces(NVH_SOURCE_DIR "/bench/traces");
    const QStringList cycles = QDir(traces.filePath("cycles")).entryList({"*.csv"});
    QVERIFY(cycles.size() >= 5);
    for (const QString& name : cycles) {
        const QString trace = name == "us06.csv" ? "us06-drive.csv" : name;
        QTest::newRow(qPrintable(name)) << traces.filePath("cycles/" + name) << traces.filePath(trace);
    }
}

void TestDriveTrace::makesTheTracesOfTheTree() {
    QFETCH(QString, cycle);
    QFETCH(QString, trace);
    QFile kept(trace);
    QVERIFY(kept.open(QIODevice::ReadOnly));
    const ProgramRun made = driveTrace({cycle});
    QCOMPARE(made.status, 0);
    QVERIFY(made.output.count('\n') > 100);
    QVERIFY(made.output == kept.readAll());
}

void TestDriveTrace::obeysTheEquationOfMotion_data() {
    QTest::addColumn<QByteArray>("course");
    QTest::addColumn<double>("speed");
    QTest::addColumn<double>("acceleration");
    QTest::addColumn<double>("grade");
    QTest::addColumn<std::optional<double>>("torque");
    const std::optional<double> byForce;
    // The row looked at is that of second 2.
    QTest::newRow("standing") << QByteArray("0,0,0\n4,0,0\n") << 0.0 << 0.0 << 0.0 << std::optional(0.0);
    QTest::newRow("standing uphill") << QByteArray("0,0,10\n4,0,10\n") << 0.0 << 0.0 << 0.1 << std::optional(0.0);
    QTest::newRow("cruise") << QByteArray("0,29,0\n4,29,0\n") << 29.0 << 0.0 << 0.0 << byForce;
    QTest::newRow("uphill") << QByteArray("0,20,5\n4,20,5\n") << 20.0 << 0.0 << 0.05 << byForce;
    QTest::newRow("accelerating") << QByteArray("0,10,0\n4,18,0\n") << 14.0 << 2.0 << 0.0 << byForce;
    QTest::newRow("regenerating") << QByteArray("0,22,0\n4,18,0\n") << 20.0 << -1.0 << 0.0 << byForce;
    QTest::newRow("reverse") << QByteArray("0,-1,0\n4,-5,0\n") << -3.0 << -1.0 << 0.0 << byForce;
    // The brakes do the rest: 180 Nm, and 60 kW at 20 m/s, which are 539 rad/s of the motor.
    QTest::newRow("braking hard") << QByteArray("0,18,0\n4,2,0\n") << 10.0 << -4.0 << 0.0 << std::optional(-180.0);
    QTest::newRow("braking fast") << QByteArray("0,28,0\n4,12,0\n") << 20.0 << -4.0 << 0.0 << std::optional(-111.3);
    QTest::newRow("last metre") << QByteArray("0,2,0\n2,0.9,0\n4,-0.2,0\n") << 0.9 << -0.55 << 0.0
                                << std::optional(0.0);
}

// On a straight course the speed curve is that line. Forces in N, from the numbers that the car's header gives.
void TestDriveTrace::obeysTheEquationOfMotion() {
    QFETCH(QByteArray, course);
    QFETCH(double, speed);
    QFETCH(double, acceleration);
    QFETCH(double, grade);
    QFETCH(std::optional<double>, torque);
    const ProgramRun made = driveTrace({cycle("t_s,speed_m_s,grade_percent\n" + course)});
    QCOMPARE(made.status, 0);
    QCOMPARE(made.output.count('\n'), 1 + 41);
    const QByteArrayList row = made.output.split('\n').at(21).split(',');
    QCOMPARE(row.at(0), QByteArray("2.0"));
    QVERIFY(std::abs(row.at(1).toDouble() - speed * 3600.0 / 1609.344) <= 0.006);
    QVERIFY(std::abs(row.at(2).toDouble() - speed / (2.0 * M_PI * 0.334) * 9.00395 * 60.0) <= 0.1);
    const double way = speed < 0.0 ? -1.0 : 1.0;
    const double v = std::abs(speed);
    const double force =
        170.0 + 2.0 * v + 0.345 * v * v + 1930.0 * 9.80665 * grade + way * (1930.0 + 64.9) * acceleration;
    const double atMotor = force * 0.334 / 9.00395 * (force > 0.0 ? 1.0 / 0.97 : 0.97);
    QVERIFY2(std::abs(row.at(3).toDouble() - torque.value_or(way * atMotor)) < 0.3, row.at(3).constData());
}

void TestDriveTrace::passesOtherColumnsOn() {
    const ProgramRun made =
        driveTrace({cycle("t_s,VAPI_brakePedal,motor_rpm,HVAC_insideTemp,VAPI_trim\n"
                          "0,true,500,21.5,2\n0.15,false,,20,\n0.3,,500,invalid,3\n")});
    QCOMPARE(made.status, 0);
    const QByteArrayList lines = made.output.trimmed().split('\n');
    QCOMPARE(lines.size(), 5);
    QVERIFY(lines.at(0).endsWith(",VAPI_brakePedal,HVAC_insideTemp,VAPI_trim"));
    QVERIFY(lines.at(1).startsWith("0.0,4.34,500.0,") && lines.at(1).endsWith(",true,21.5,2"));
    QVERIFY(lines.at(2).startsWith("0.1,4.34,500.0,") && lines.at(2).endsWith(",,,"));
    QVERIFY(lines.at(3).startsWith("0.2,4.34,500.0,") && lines.at(3).endsWith(",false,20.0,"));
    QVERIFY(lines.at(4).startsWith("0.3,4.34,500.0,") && lines.at(4).endsWith(",,invalid,3"));
}

void TestDriveTrace::refusesWhatIsNoDrive_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("named");
    const auto row = [](const char* name, const char* content, const char* named) {
        QTest::newRow(name) << QByteArray(content) << QByteArray(named);
    };
    row("damaged line", "t_s,speed_m_s\n0,0\n1,x\n", "cycle.csv:3:");
    row("no speed", "t_s,speed\n0,0\n1,1\n", "either speed_m_s or motor_rpm");
    row("no first point", "t_s,speed_m_s\n0,\n1,1\n2,2\n", "speed_m_s is no course");
    row("unknown speed", "t_s,speed_m_s\n0,0\n1,invalid\n2,2\n", "speed_m_s is no course");
    row("truth for a grade", "t_s,speed_m_s,grade_percent\n0,0,true\n1,1,false\n", "grade_percent is no course");
    row("made column", "t_s,speed_m_s,VAPI_motorRPM\n0,0,0\n1,1,0\n", "VAPI_motorRPM");
    row("too much torque", "t_s,speed_m_s\n0,0\n1,9\n2,18\n", "the car cannot do");
    row("too fast", "t_s,motor_rpm\n0,17000\n1,17000\n", "the car cannot do");
}

void TestDriveTrace::refusesWhatIsNoDrive() {
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, named);
    const ProgramRun refused = driveTrace({cycle(content)});
    QCOMPARE(refused.status, 2);
    QVERIFY2(refused.errors.contains(named), refused.errors.constData());
    QVERIFY(refused.errors.contains("cycle.csv"));
    QCOMPARE(refused.output, QByteArray());
}

QTEST_APPLESS_MAIN(TestDriveTrace)
#include "tst_drivetrace.moc"
