#pragma once

#include <QString>

// What the status label says of a run.
enum class Status {
    Waiting,          // nothing goes on
    WaitingForAck,    // Start was touched
    WaitingForBrake,  // a brake squeal test of a moving car
    Recording,        // a run or a clip
    RecordingDone,    // not decided about yet
    Pass,             // the verdict, when the run is packed
    Fail,             // the same
    Processing,       // Upload was touched
    Saving,           // Save was touched
};

// What the upload-status label says of packages.
enum class UploadStatus {
    NothingUploaded,   // yet
    ManualRecording,   // a brake squeal test of a standing car
    UploadingAll,      // "Upload All" was touched
    PackagingFiles,    // tar and gzip are at work
    PackagingFailed,   // there was nothing to pack
    UploadingPackage,  // curl is at work
    PostingFileInfo,   // and once more, for the metadata
    PostingFailed,     // the package stays
    FileSaved,         // as asked
    UploadFailed,      // with the count of failures
    FilesUploaded,     // with the count of successes
    FatalError,        // a program could not do its work
};

// A text on the status label, with its colour and its place.
struct StatusText {
    QString text;   // as it is shown
    QString color;  // of the skin
    int x = 0;      // of the label
};

// A text on the upload-status label.
struct UploadStatusText {
    QString text;   // as it is shown, but for the place of a count
    QString color;  // of the skin
};

// The texts' tables.
StatusText textOf(Status status);
UploadStatusText textOf(UploadStatus status);
