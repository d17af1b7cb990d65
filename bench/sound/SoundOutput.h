#pragma once

#include <QString>
#include <QtGlobal>

#include <memory>
#include <span>

// Where the cabin's sound goes. Each `write()` takes whole frames of interleaved samples and returns when there is room
// for more, so the place sets the pace. Every call is false, with the reason, when the place is gone.
class SoundOutput {
public:
    virtual ~SoundOutput() = default;

    virtual bool write(std::span<const qint16> samples, QString* error) = 0;
    // How long after `write()` the samples are heard, in seconds.
    virtual double latency() const { return 0.0; }
    // Ends the sound properly; destroying breaks it off.
    virtual bool finish(QString* error) = 0;

    // A sink of the PulseAudio server that PULSE_SERVER names, at the sink's own pace; needs the program pacat.
    static std::unique_ptr<SoundOutput> toSink(const QString& sink, QString* error);
    // A 16-bit WAV file, as fast as the disk takes it.
    static std::unique_ptr<SoundOutput> toWav(const QString& path, QString* error);
    // The bare samples on standard output.
    static std::unique_ptr<SoundOutput> toStandardOutput();
};
