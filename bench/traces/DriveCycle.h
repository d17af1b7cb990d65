#pragma once

#include "bench/traces/ElectricCar.h"
#include "bench/traces/SmoothCurve.h"
#include "host/trace/TraceFile.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

// What a car is asked to do, in the format of a trace: `t_s`, one of `speed_m_s` and `motor_rpm` (both negative in
// reverse), if wanted `grade_percent`, and any other columns, which are passed on as they stand.
class DriveCycle {
public:
    // Null, with the file and the reason, for a file that is no cycle.
    static std::optional<DriveCycle> read(const QString& path, QString* error);

    double duration() const { return mFile.duration(); }
    ElectricCar::Demand at(double seconds) const;

    // ",NAME" for each column that is passed on.
    QByteArray passedOnHeader() const;
    // ",CELL" for each, with what was last given after one time and up to another; an empty cell where nothing was.
    QByteArray passedOnCells(double after, double upTo) const;

private:
    DriveCycle(TraceFile file, SmoothCurve speed, std::optional<SmoothCurve> grade);

    TraceFile mFile;
    SmoothCurve mSpeed;
    std::optional<SmoothCurve> mGrade;
    std::vector<int> mPassedOn;
};
