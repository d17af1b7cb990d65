#include "nvh/ui/StatusTexts.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr struct {
    Status status;
    const char* text;
    const char* color;
    int x;
} kStatusTexts[] = {
    {Status::Waiting, "Waiting", "black", 445},
    {Status::WaitingForAck, "Waiting for ACK ", "black", 350},
    {Status::WaitingForBrake, "Waiting for Brake", "battery/red", 340},
    {Status::Recording, "Recording ", "black", 415},
    {Status::RecordingDone, "Recording done!", "battery/blue", 350},
    {Status::Pass, "PASS ", "battery/green", 480},
    {Status::Fail, "FAIL ", "battery/red", 480},
    {Status::Processing, "Processing ", "black", 410},
    {Status::Saving, "Saving..", "battery/blue", 410},
};

constexpr struct {
    UploadStatus status;
    const char* text;
    const char* color;
} kUploadStatusTexts[] = {
    {UploadStatus::NothingUploaded, "| Files Uploaded: -", "black"},
    {UploadStatus::ManualRecording, "| Manual Recording", "battery/red"},
    {UploadStatus::UploadingAll, "| Uploading..", "battery/red"},
    {UploadStatus::PackagingFiles, "| Packaging Files...", "battery/blue"},
    {UploadStatus::PackagingFailed, "| Packaging Failed..", "battery/blue"},
    {UploadStatus::UploadingPackage, "| Uploading Pkg...", "battery/blue"},
    {UploadStatus::PostingFileInfo, "| Posting File Info!", "battery/blue"},
    {UploadStatus::PostingFailed, "| Posting Failed!", "battery/black"},
    {UploadStatus::FileSaved, "| File Saved!", "black"},
    {UploadStatus::UploadFailed, "| Upload Failed: %1", "black"},
    {UploadStatus::FilesUploaded, "| Files Uploaded: %1", "black"},
    {UploadStatus::FatalError, "| Fatal Error!", "battery/red"},
};

template <typename Rows, typename Which>
const auto& rowOf(const Rows& rows, Which which) {
    return *std::find_if(std::begin(rows), std::end(rows), [which](const auto& row) { return row.status == which; });
}

}  // namespace

StatusText textOf(Status status) {
    const auto& row = rowOf(kStatusTexts, status);
    return {QString::fromLatin1(row.text), QString::fromLatin1(row.color), row.x};
}

UploadStatusText textOf(UploadStatus status) {
    const auto& row = rowOf(kUploadStatusTexts, status);
    return {QString::fromLatin1(row.text), QString::fromLatin1(row.color)};
}
