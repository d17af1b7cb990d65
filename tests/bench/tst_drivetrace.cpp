// The traces of the bench: made again by the program, and checked against the equation of motion by hand.

#include "tests/bench/ProgramRun.h"
#include "tests/support/Rows.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <optional>

class TestDriveTrace : public QObject {
    Q_OBJECT

private slots:
    void makesTheTracesOfTheTree() {
        const QDir traces(NVH_SOURCE_DIR "/bench/traces");
        const QStringList cycles = QDir(traces.filePath("cycles")).entryList({"*.csv"});
        QVERIFY(cycles.size() >= 5);
        for (const QString& name : cycles) {
            const ProgramRun made = driveTrace(traces.filePath("cycles/" + name));
            QCOMPARE(made.status, 0);
            QVERIFY(made.output.count('\n') > 100);
            const QString kept = traces.filePath(name == "us06.csv" ? "us06-drive.csv" : name);
            QVERIFY2(made.output == readFile(kept), qPrintable(kept));
        }
    }

    void obeysTheEquationOfMotion_data() {
        const auto row = columns<QString, double, double, double, std::optional<double>>(
            "course", "speed", "acceleration", "grade", "torque");
        const std::optional<double> byForce;
        // The row looked at is that of second 2.
        row("standing uphill", "0,0,10\n4,0,10\n", 0.0, 0.0, 0.1, std::optional(0.0));
        row("uphill", "0,20,5\n4,20,5\n", 20.0, 0.0, 0.05, byForce);
        row("accelerating", "0,10,0\n4,18,0\n", 14.0, 2.0, 0.0, byForce);
        row("regenerating", "0,22,0\n4,18,0\n", 20.0, -1.0, 0.0, byForce);
        row("reverse", "0,-1,0\n4,-5,0\n", -3.0, -1.0, 0.0, byForce);
        // The brakes do the rest: 180 Nm, and 60 kW at 20 m/s, which are 539 rad/s of the motor.
        // The brakes do the rest: 180 Nm, and 60 kW at 20 m/s, which are 539 rad/s of the motor.
        row("braking hard", "0,18,0\n4,2,0\n", 10.0, -4.0, 0.0, std::optional(-180.0));
        row("braking fast", "0,28,0\n4,12,0\n", 20.0, -4.0, 0.0, std::optional(-111.3));
        row("last metre", "0,2,0\n2,0.9,0\n4,-0.2,0\n", 0.9, -0.55, 0.0, std::optional(0.0));
    }

    // On a straight course the speed curve is that line. Forces in N, from the numbers that the car's header gives.
    void obeysTheEquationOfMotion() {
        const QTemporaryDir place;
        QFETCH(QString, course);
        QFETCH(double, speed);
        QFETCH(double, acceleration);
        QFETCH(double, grade);
        QFETCH(std::optional<double>, torque);
        const ProgramRun made =
            driveTrace(writeFile(place.filePath("cycle.csv"), "t_s,speed_m_s,grade_percent\n" + course.toLatin1()));
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

private:
    static ProgramRun driveTrace(const QString& cycle) { return ProgramRun::of(NVH_BIN_DIR "/drive-trace", {cycle}); }
};

QTEST_APPLESS_MAIN(TestDriveTrace)
#include "tst_drivetrace.moc"
