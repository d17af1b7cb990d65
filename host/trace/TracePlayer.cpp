#include "host/trace/TracePlayer.h"

#include "host/trace/TraceFile.h"
#include "host/values/ValueSetter.h"

#include <algorithm>
#include <cmath>

namespace {

using Manager = DataValueManager;

std::optional<Manager::Type> valueType(TraceFile::Type type) {
    switch (type) {
        case TraceFile::Type::Bool:
            return Manager::Type::Bool;
        case TraceFile::Type::Int:
            return Manager::Type::Int;
        case TraceFile::Type::Real:
            return Manager::Type::Real;
        case TraceFile::Type::None:
            break;
    }
    return std::nullopt;
}

QVariant cellValue(const TraceFile::Cell& cell, TraceFile::Type type) {
    if (cell.state == TraceFile::Cell::State::Invalid)
        return {};
    switch (type) {
        case TraceFile::Type::Bool:
            return cell.number != 0.0;
        case TraceFile::Type::Int:
            return int(cell.number);
        default:
            return cell.number;
    }
}

}  // namespace

TracePlayer::TracePlayer(QObject* parent) : QObject(parent) {
    mTimer.setSingleShot(true);
    mTimer.setTimerType(Qt::PreciseTimer);
    connect(&mTimer, &QTimer::timeout, this, &TracePlayer::playDueRows);
}

bool TracePlayer::fits(const TraceFile& trace, QString* error) {
    const auto refuse = [&](const QString& reason) {
        if (error)
            *error = trace.name() + reason;
        return false;
    };
    for (const TraceFile::Column& column : trace.columns()) {
        const DataValue* value = Manager::instance().find(column.name);
        const auto type = valueType(column.type);
        const auto wanted = value ? std::optional(ValueSetter::typeOf(*value)) : std::nullopt;
        if (column.tooLargeLine > 0 && wanted.value_or(Manager::Type::Int) == Manager::Type::Int)
            return refuse(QStringLiteral(":%1: %2 is a whole number of 32 bit, the trace gives a larger one")
                              .arg(column.tooLargeLine)
                              .arg(column.name));
        if (wanted && type && !ValueSetter::canHold(*wanted, *type))
            return refuse(QStringLiteral(": %1 is %2, the trace gives %3")
                              .arg(column.name, ValueSetter::typeName(*wanted), ValueSetter::typeName(*type)));
    }
    return true;
}

bool TracePlayer::start(std::shared_ptr<const TraceFile> trace, double fromSecond, QString* error) {
    if (!fits(*trace, error))
        return false;
    for (const TraceFile::Column& column : trace->columns()) {
        if (const auto type = valueType(column.type); type && !Manager::instance().find(column.name))
            Manager::instance().add(column.name, *type);
    }
    ++mReplay;
    mTrace = std::move(trace);
    mFromSecond = fromSecond;
    mNextRow = 0;
    while (mNextRow < mTrace->rowCount() && mTrace->timeOf(mNextRow) < fromSecond)
        ++mNextRow;
    mClock.start();
    mTimer.start(0);
    return true;
}

void TracePlayer::stop() {
    ++mReplay;
    mTimer.stop();
    mTrace.reset();
}

void TracePlayer::playDueRows() {
    const int replay = mReplay;
    const auto trace = mTrace;
    while (mNextRow < trace->rowCount() &&
           (trace->timeOf(mNextRow) - mFromSecond) * 1e9 <= double(mClock.nsecsElapsed())) {
        setRow(*trace, mNextRow++);
        if (replay != mReplay)
            return;
    }
    scheduleNextRow();
}

void TracePlayer::setRow(const TraceFile& trace, int row) const {
    const int columns = int(trace.columns().size());
    for (int column = 0; column < columns; ++column) {
        const TraceFile::Cell cell = trace.cell(row, column);
        if (cell.state == TraceFile::Cell::State::Unchanged)
            continue;
        const TraceFile::Column& about = trace.columns()[std::size_t(column)];
        // A column that is never more than invalid has a value to set only if somebody else has made it.
        ValueSetter::set(about.name, cellValue(cell, about.type), nullptr);
    }
}

void TracePlayer::scheduleNextRow() {
    if (mNextRow == mTrace->rowCount()) {
        mTrace.reset();
        emit finished();
        return;
    }
    // The rest of a long gap is waited for in further turns: a timer counts no more than 24 days.
    constexpr double kLongestWaitMs = 3600e3;
    const double dueMs = (mTrace->timeOf(mNextRow) - mFromSecond) * 1e3 - double(mClock.nsecsElapsed()) / 1e6;
    mTimer.start(int(std::ceil(std::clamp(dueMs, 0.0, kLongestWaitMs))));
}
