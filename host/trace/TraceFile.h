#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

class QIODevice;

// A recorded drive as any logger exports it: CSV with a header line and one row a moment.
//
//     t_s,VAPI_motorRPM,VAPI_brakePedal
//     0,0,false
//     0.1,35.5,
//     0.2,invalid,true
//
// The first column is the time in seconds from the trace's start, not negative and strictly rising. In the others an
// empty cell leaves a value as it is, the word "invalid" makes it invalid; else it holds true, false or a number.
// A byte order mark, CRLF line ends, blank lines and blanks around a cell are tolerated.
//
//     QString error;
//     const auto trace = TraceFile::read("us06.csv", &error);
//     if (!trace)
//         qCritical("%s", qPrintable(error));   // us06.csv:17: "4,2" ...
//
// A plain value without a thread of its own. Needs QtCore alone.
class TraceFile {
public:
    // What a column's cells say: whole numbers are Int, one cell with a decimal point or an exponent makes the whole
    // column Real. Whole numbers beyond 32 bit have room in a Real value alone: a column with one of them is Real, and
    // names the line of the first. None: the column never gives a value.
    enum class Type { None, Bool, Int, Real };

    struct Column {
        QString name;
        Type type = Type::None;
        int tooLargeLine = 0;  // of a whole number beyond 32 bit in a column without point and exponent; else 0
    };

    struct Cell {
        enum class State : std::uint8_t { Unchanged, Invalid, Valid };
        State state = State::Unchanged;
        double number = 0.0;  // of a valid cell; 1 and 0 are true and false in a column of type Bool
    };

    // Reads all of it; nothing, and an error "FILE:LINE: reason", if a line cannot be read.
    static std::optional<TraceFile> read(const QString& path, QString* error);
    // The same from an open device; the name stands for it in errors.
    static std::optional<TraceFile> read(QIODevice& device, const QString& name, QString* error);

    // The path, or what stands for it in errors.
    const QString& name() const { return mName; }
    // Without the time's column, in the order of the header.
    const std::vector<Column>& columns() const { return mColumns; }
    // -1 if the trace has no such column.
    int columnOf(const QString& name) const;

    int rowCount() const { return int(mTimes.size()); }
    double timeOf(int row) const { return mTimes[std::size_t(row)]; }
    Cell cell(int row, int column) const;

    // Time of the last row; 0 without rows.
    double duration() const { return mTimes.empty() ? 0.0 : mTimes.back(); }

private:
    friend class TraceReader;

    std::size_t indexOf(int row, int column) const { return std::size_t(row) * mColumns.size() + std::size_t(column); }

    QString mName;
    std::vector<Column> mColumns;
    std::vector<double> mTimes;
    // Row by row.
    std::vector<double> mNumbers;
    std::vector<Cell::State> mStates;
};
