#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <vector>

// One figure of the recorder beside the figure it is compared with.
struct Figure {
    QString what;
    QString measured;    // with its unit
    QString reference;   // what it stands beside, with its unit; may be empty
    double value = 0.0;  // the ratio, or the measured value where there is no reference
    QString unit;        // of the value; empty for a ratio
    // The value that is wanted, as an upper or a lower limit; nothing where a figure is for information only.
    std::optional<double> atMost;
    std::optional<double> atLeast;

    bool asWanted() const;
};

// A measurement gives figures, or says why it could not be made.
struct Measurement {
    QString name;
    std::function<std::vector<Figure>(QString& error)> run;
};

// Prints a figure as one line of the table.
void printFigure(const Figure& figure);

// The middle one of an odd number of values.
double median(std::vector<double> values);

// Seconds that a piece of work takes.
double secondsOf(const std::function<void()>& work);
