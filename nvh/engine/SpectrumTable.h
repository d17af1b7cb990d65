#pragma once

#include "nvh/Export.h"

#include <QByteArray>

// A spectrum table: a line for each frequency with its frequency (Hz), order, level and RPM between blanks. Any thread.

// Judges a table: false if any level in the band (both ends included) exceeds the threshold. Fields that are missing or
// unreadable count as 0, so that a table without lines passes.
NVH_EXPORT bool spectrumPasses(const QByteArray& table, int lowFrequency, int highFrequency, double threshold);

// What is known of a text that should be a table. Lines are numbered from 1; blank ones are passed over.
struct SpectrumTableCheck {
    bool isEmpty = true;
    bool hasNumbers = false;  // anywhere
    bool hasLevels = false;   // at least one line has a frequency and a level where they are looked for
    int firstLine = 0;
    int lastLine = 0;
    bool isCut = false;  // the last line has less than four fields
};

// How far a text can be relied on as a table.
NVH_EXPORT SpectrumTableCheck checkSpectrumTable(const QByteArray& table);
