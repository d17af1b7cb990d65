#pragma once

#include <QtGlobal>

#include <span>

// Something that never runs out of cabin sound.
class SoundSource {
public:
    virtual ~SoundSource() = default;

    // Fills whole frames of kCabinChannels interleaved samples. False if there is no more to be had.
    virtual bool render(std::span<qint16> samples) = 0;
    // Goes on from that second of what is being played, counted round if it is shorter.
    virtual void playFrom(double seconds) = 0;
};
