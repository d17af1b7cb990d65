#pragma once

#include <QtGlobal>

#include <span>

// Something that never runs out of cabin sound.
class SoundSource {
public:
    virtual ~SoundSource() = default;

    // Fills whole frames of kCabinChannels interleaved samples. False if there is no more to be had.
    virtual bool render(std::span<qint16> samples) = 0;
    // Goes on from the start of what is being played.
    virtual void rewind() = 0;
};
