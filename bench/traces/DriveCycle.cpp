#include "bench/traces/DriveCycle.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace {

using State = TraceFile::Cell::State;
using Type = TraceFile::Type;

const QString kSpeed = QStringLiteral("speed_m_s");
const QString kRpm = QStringLiteral("motor_rpm");
const QString kGrade = QStringLiteral("grade_percent");
const std::array<QString, 3> kOwnColumns{kSpeed, kRpm, kGrade};

// The course of a column, each number turned into what it stands for. Null if it gives less than two numbers, or no
// number at the start: then it is no course.
std::optional<SmoothCurve> curveOf(const TraceFile& file, int column, const std::function<double(double)>& meaning) {
    std::vector<double> times;
    std::vector<double> values;
    for (int row = 0; row < file.rowCount(); ++row) {
        const TraceFile::Cell cell = file.cell(row, column);
        if (cell.state == State::Unchanged && row > 0)
            continue;
        if (cell.state != State::Valid)
            return std::nullopt;
        times.push_back(file.timeOf(row));
        values.push_back(meaning(cell.number));
    }
    const Type type = file.columns()[size_t(column)].type;
    if (times.size() < 2 || type == Type::Bool)
        return std::nullopt;
    return SmoothCurve(std::move(times), std::move(values));
}

QByteArray textOf(const TraceFile::Cell& cell, Type type) {
    if (cell.state != State::Valid)
        return cell.state == State::Invalid ? "invalid" : "";
    switch (type) {
        case Type::Bool:
            return cell.number != 0.0 ? "true" : "false";
        case Type::Int:
            return QByteArray::number(int(cell.number));
        default: {
            const QByteArray number = QByteArray::number(cell.number, 'g', QLocale::FloatingPointShortest);
            return number.contains('.') || number.contains('e') ? number : number + ".0";
        }
    }
}

}  // namespace

std::optional<DriveCycle> DriveCycle::read(const QString& path, QString* error) {
    std::optional<TraceFile> file = TraceFile::read(path, error);
    if (!file)
        return std::nullopt;
    const auto refuse = [&](const QString& reason) {
        *error = path + QStringLiteral(": ") + reason;
        return std::nullopt;
    };
    const int speedColumn = file->columnOf(kSpeed);
    const int rpmColumn = file->columnOf(kRpm);
    const int gradeColumn = file->columnOf(kGrade);
    if ((speedColumn < 0) == (rpmColumn < 0))
        return refuse(QStringLiteral("a cycle has either %1 or %2").arg(kSpeed, kRpm));
    for (const char* made : {"VAPI_signedVehicleSpeed", "VAPI_motorRPM", "VAPI_torqueCmd"}) {
        if (file->columnOf(QLatin1String(made)) >= 0)
            return refuse(QStringLiteral("%1 is what a cycle is made into").arg(QLatin1String(made)));
    }
    std::optional<SmoothCurve> speed = speedColumn >= 0
                                           ? curveOf(*file, speedColumn, [](double speedNow) { return speedNow; })
                                           : curveOf(*file, rpmColumn, ElectricCar::speedAt);
    if (!speed)
        return refuse(QStringLiteral("%1 is no course of numbers").arg(speedColumn >= 0 ? kSpeed : kRpm));
    std::optional<SmoothCurve> grade;
    if (gradeColumn >= 0) {
        grade = curveOf(*file, gradeColumn, [](double percent) { return percent / 100.0; });
        if (!grade)
            return refuse(QStringLiteral("%1 is no course of numbers").arg(kGrade));
    }
    return DriveCycle(std::move(*file), std::move(*speed), std::move(grade));
}

DriveCycle::DriveCycle(TraceFile file, SmoothCurve speed, std::optional<SmoothCurve> grade)
    : mFile(std::move(file)), mSpeed(std::move(speed)), mGrade(std::move(grade)) {
    for (const TraceFile::Column& column : mFile.columns()) {
        if (std::find(kOwnColumns.begin(), kOwnColumns.end(), column.name) == kOwnColumns.end())
            mPassedOn.push_back(mFile.columnOf(column.name));
    }
}

ElectricCar::Demand DriveCycle::at(double seconds) const {
    const SmoothCurve::Moment moment = mSpeed.at(seconds);
    return {moment.value, moment.slope, mGrade ? mGrade->at(seconds).value : 0.0};
}

QByteArray DriveCycle::passedOnHeader() const {
    QByteArray header;
    for (const int column : mPassedOn)
        header += ',' + mFile.columns()[size_t(column)].name.toUtf8();
    return header;
}

QByteArray DriveCycle::passedOnCells(double after, double upTo) const {
    QByteArray cells;
    for (const int column : mPassedOn) {
        TraceFile::Cell last;
        for (int row = 0; row < mFile.rowCount() && mFile.timeOf(row) <= upTo; ++row) {
            const TraceFile::Cell cell = mFile.cell(row, column);
            if (mFile.timeOf(row) > after && cell.state != State::Unchanged)
                last = cell;
        }
        cells += ',' + textOf(last, mFile.columns()[size_t(column)].type);
    }
    return cells;
}
