#pragma once

#include <QByteArray>
#include <QRegularExpression>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

class TraceFile;

// The steps of a drive as they stand in its file. Times are seconds.

// An item of a switch, by its text or by its position.
using ItemChoice = std::variant<QString, int>;

// In the order of the file. Data values: bool, qlonglong or double, invalid for null.
using NamedVariants = std::vector<std::pair<QString, QVariant>>;

struct SetStep {
    NamedVariants values;
};

struct TraceStep {
    std::shared_ptr<const TraceFile> trace;  // null stops the replay
    double from = 0.0;
};

struct TouchStep {
    QString view;
    double hold = 0.0;
};

struct SlideStep {
    QString view;
    ItemChoice to;
};

struct PickStep {
    QString view;
    QString choice;
};

struct MarkStep {
    QString view;
    int row = 0;
    ItemChoice to;
};

struct WaitStep {
    double seconds = 0.0;
};

struct ExpectStep {
    QString view;
    bool there = true;
    std::optional<QString> text;
    std::optional<QRegularExpression> matches;
    std::optional<QString> colour;
    std::optional<bool> visible;
    std::optional<bool> enabled;
    double within = 0.0;
};

struct ExpectLogStep {
    QString text;
    std::optional<QString> level;
    double within = 0.0;
};

struct ExpectValueStep {
    QString name;
    QVariant is;  // bool or double, invalid for null
    double within = 0.0;
};

struct ConfigStep {
    NamedVariants settings;
};

struct GrabStep {
    QString path;
};

struct TreeStep {
    QString path;
};

using DriveAction = std::variant<SetStep, TraceStep, TouchStep, SlideStep, PickStep, MarkStep, WaitStep, ExpectStep,
                                 ExpectLogStep, ExpectValueStep, ConfigStep, GrabStep, TreeStep>;

struct DriveStep {
    int line = 0;       // in the drive's file, from 1
    QByteArray source;  // the line itself
    double at = 0.0;    // earliest second of the drive
    DriveAction action;
};
