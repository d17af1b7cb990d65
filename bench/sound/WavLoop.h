#pragma once

#include "bench/sound/SoundSource.h"

#include <QString>

#include <memory>
#include <sndfile.h>

// A recording of the cabin, over and over, read from disk as it is played. Any format that libsndfile reads; it has to
// have the cabin's channels and rate.
class WavLoop : public SoundSource {
public:
    // Null, with the file and the reason, for a file that cannot be played.
    static std::unique_ptr<WavLoop> open(const QString& path, QString* error);

    bool render(std::span<qint16> samples) override;
    void playFrom(double seconds) override;

private:
    struct Closer {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };
    using File = std::unique_ptr<SNDFILE, Closer>;

    WavLoop(File file, sf_count_t frames) : mFile(std::move(file)), mFrames(frames) {}

    const File mFile;
    const sf_count_t mFrames;
};
