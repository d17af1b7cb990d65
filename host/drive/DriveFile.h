#pragma once

#include "host/drive/DriveStep.h"

// A script of one session on the screen: JSON Lines, one step a line; blank lines and lines that begin with # are
// skipped.
//
//     {"touch": "mStartButton"}
//     {"expect": "mStatusLabel", "text": "Recording", "within": 2}
//
// Reading checks everything that can be known before the drive starts: every line, every member and its type, and every
// trace that it names, whose path is relative to the drive's file.
struct DriveFile {
    QString path;
    std::vector<DriveStep> steps;

    // Nothing, and an error "FILE:LINE: reason", if a line cannot be used.
    static std::optional<DriveFile> read(const QString& path, QString* error);
};
