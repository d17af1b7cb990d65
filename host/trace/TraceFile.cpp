#include "host/trace/TraceFile.h"

#include <QByteArrayList>
#include <QFile>
#include <QIODevice>

#include <algorithm>
#include <cmath>
#include <limits>

// Reads one trace line by line; the first fault ends it.
class TraceReader {
public:
    std::optional<TraceFile> read(QIODevice& device, QString& error);

private:
    bool readLine(QByteArray line);
    bool readHeader(const QByteArrayList& cells);
    bool readRow(const QByteArrayList& cells);
    bool readTime(const QByteArray& cell);
    bool readCell(const QByteArray& cell, TraceFile::Column& column);
    void noteNumber(const QByteArray& cell, TraceFile::Column& column) const;
    bool refuse(const QString& reason);

    TraceFile mTrace;
    int mLine = 0;
    QString mReason;
};

namespace {

QString quoted(const QByteArray& cell) {
    return QLatin1Char('"') + QString::fromUtf8(cell.left(40)) + QLatin1Char('"');
}

// Digits with an optional sign, point and exponent. The library's conversion would also take "nan" and "infinity".
bool looksLikeNumber(const QByteArray& cell) {
    return std::any_of(cell.begin(), cell.end(), [](char c) { return c >= '0' && c <= '9'; }) &&
           std::all_of(cell.begin(), cell.end(), [](char c) {
               return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.' || c == 'e' || c == 'E';
           });
}

std::optional<double> toNumber(const QByteArray& cell) {
    bool ok = false;
    const double number = looksLikeNumber(cell) ? cell.toDouble(&ok) : 0.0;
    if (!ok || !std::isfinite(number))
        return std::nullopt;
    return number;
}

bool isWhole(const QByteArray& cell) {
    return std::none_of(cell.begin(), cell.end(), [](char c) { return c == '.' || c == 'e' || c == 'E'; });
}

bool isWhole32(const QByteArray& cell) {
    bool ok = false;
    cell.toInt(&ok);
    return ok;
}

}  // namespace

std::optional<TraceFile> TraceReader::read(QIODevice& device, QString& error) {
    while (!device.atEnd()) {
        ++mLine;
        if (!readLine(device.readLine())) {
            error = QStringLiteral("%1: %2").arg(mLine).arg(mReason);
            return std::nullopt;
        }
    }
    if (mTrace.mColumns.empty()) {
        error = QStringLiteral("1: there is no header line");
        return std::nullopt;
    }
    return std::move(mTrace);
}

bool TraceReader::readLine(QByteArray line) {
    if (mLine == 1 && line.startsWith("\xEF\xBB\xBF"))
        line.remove(0, 3);
    line = line.trimmed();
    if (line.isEmpty())
        return true;
    QByteArrayList cells = line.split(',');
    for (QByteArray& cell : cells)
        cell = cell.trimmed();
    return mTrace.mColumns.empty() ? readHeader(cells) : readRow(cells);
}

bool TraceReader::readHeader(const QByteArrayList& cells) {
    if (cells.first() != "t_s")
        return refuse(QStringLiteral("the header begins with %1 instead of t_s").arg(quoted(cells.first())));
    if (cells.size() < 2)
        return refuse(QStringLiteral("the header names no value beside t_s"));
    for (int i = 1; i < cells.size(); ++i) {
        const QString name = QString::fromUtf8(cells.at(i));
        if (name.isEmpty())
            return refuse(QStringLiteral("column %1 has no name").arg(i + 1));
        if (mTrace.columnOf(name) >= 0)
            return refuse(QStringLiteral("%1 is named twice").arg(name));
        mTrace.mColumns.push_back({name, TraceFile::Type::None});
    }
    return true;
}

bool TraceReader::readRow(const QByteArrayList& cells) {
    const int wanted = int(mTrace.mColumns.size()) + 1;
    if (cells.size() != wanted)
        return refuse(QStringLiteral("%1 cells where the header has %2").arg(cells.size()).arg(wanted));
    if (!readTime(cells.first()))
        return false;
    for (int i = 1; i < wanted; ++i) {
        if (!readCell(cells.at(i), mTrace.mColumns[std::size_t(i) - 1]))
            return false;
    }
    return true;
}

bool TraceReader::readTime(const QByteArray& cell) {
    const std::optional<double> time = toNumber(cell);
    if (!time)
        return refuse(QStringLiteral("%1 is no time in seconds").arg(quoted(cell)));
    if (*time < 0.0)
        return refuse(QStringLiteral("time %1 is negative").arg(*time));
    if (!mTrace.mTimes.empty() && *time <= mTrace.mTimes.back())
        return refuse(QStringLiteral("time %1 does not rise after %2").arg(*time).arg(mTrace.mTimes.back()));
    mTrace.mTimes.push_back(*time);
    return true;
}

bool TraceReader::readCell(const QByteArray& cell, TraceFile::Column& column) {
    using State = TraceFile::Cell::State;
    using Type = TraceFile::Type;
    const bool truth = cell == "true" || cell == "false";
    const std::optional<double> number = truth ? double(cell == "true") : toNumber(cell);
    State state = State::Valid;
    if (cell.isEmpty())
        state = State::Unchanged;
    else if (cell == "invalid")
        state = State::Invalid;
    else if (!number)
        return refuse(
            QStringLiteral("%1 for %2 is neither a number, true, false nor invalid").arg(quoted(cell), column.name));

    if (state == State::Valid) {
        const bool wasTruth = column.type == Type::Bool;
        if (column.type != Type::None && wasTruth != truth)
            return refuse(QStringLiteral("%1 for %2, which held %3 before")
                              .arg(quoted(cell), column.name,
                                   wasTruth ? QStringLiteral("true or false") : QStringLiteral("numbers")));
        if (truth)
            column.type = Type::Bool;
        else
            noteNumber(cell, column);
    }
    mTrace.mStates.push_back(state);
    mTrace.mNumbers.push_back(number.value_or(0.0));
    return true;
}

void TraceReader::noteNumber(const QByteArray& cell, TraceFile::Column& column) const {
    using Type = TraceFile::Type;
    const bool isReal = column.type == Type::Real && column.tooLargeLine == 0;
    if (isReal || !isWhole(cell)) {
        column.type = Type::Real;
        column.tooLargeLine = 0;
    } else if (!isWhole32(cell) && column.tooLargeLine == 0) {
        column.type = Type::Real;
        column.tooLargeLine = mLine;
    } else if (column.type == Type::None) {
        column.type = Type::Int;
    }
}

bool TraceReader::refuse(const QString& reason) {
    mReason = reason;
    return false;
}

std::optional<TraceFile> TraceFile::read(const QString& path, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    return read(file, path, error);
}

std::optional<TraceFile> TraceFile::read(QIODevice& device, const QString& name, QString* error) {
    QString reason;
    std::optional<TraceFile> trace = TraceReader().read(device, reason);
    if (trace)
        trace->mName = name;
    else if (error)
        *error = name + QLatin1Char(':') + reason;
    return trace;
}

int TraceFile::columnOf(const QString& name) const {
    const auto found =
        std::find_if(mColumns.begin(), mColumns.end(), [&](const Column& column) { return column.name == name; });
    return found == mColumns.end() ? -1 : int(found - mColumns.begin());
}

TraceFile::Cell TraceFile::cell(int row, int column) const {
    const std::size_t index = indexOf(row, column);
    return {mStates[index], mNumbers[index]};
}
