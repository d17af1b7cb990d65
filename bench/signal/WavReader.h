#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <sndfile.h>
#include <span>
#include <string>

// A WAV file, read in blocks from front to back, so that its length does not matter:
//
//     std::string error;
//     std::optional<WavReader> wav = WavReader::open("/tmp/nvh-recording.wav", error);
//     std::vector<float> block(4096 * wav->channels());
//     while (const std::size_t frames = wav->read(std::span<float>(block))) { … }
//
// A frame is one sample of each channel. Full scale is 1.0. Samples of floating-point files that are not numbers read
// as 0, and absurdly large ones are limited, so that one broken sample cannot spoil a sum over the rest.
class WavReader {
public:
    // Opens RIFF, extensible and RF64 WAV files, also those whose recorder was killed before it wrote their true
    // length. Returns nothing, and one line in `error` that names the file and the reason, for anything else.
    static std::optional<WavReader> open(const std::string& path, std::string& error);

    int channels() const { return mInfo.channels; }
    // Hz, never 0.
    int sampleRate() const { return mInfo.samplerate; }
    // How many frames there are, as far as the header and the file's length tell; reading may end earlier.
    std::int64_t frames() const { return mInfo.frames; }
    // The largest magnitude below 1.0 that is still full scale: the positive limit of the file's integers.
    double fullScale() const;

    // Reads whole frames, interleaved, as many as fit. Returns their number, 0 at the end or at an unreadable place.
    std::size_t read(std::span<float> interleaved);
    std::size_t read(std::span<double> interleaved);

    // Goes on reading at this frame. False if the file has no such place.
    bool seek(std::int64_t frame);

private:
    struct Closer {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };

    WavReader(SNDFILE* file, const SF_INFO& info) : mFile(file), mInfo(info) {}

    bool holdsFloats() const;

    std::unique_ptr<SNDFILE, Closer> mFile;
    SF_INFO mInfo;
};
