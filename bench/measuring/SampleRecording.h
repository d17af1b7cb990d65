#pragma once

#include <QString>

// Writes a WAV file as the recorder does, 8 channels at 48 kHz and 16 bit, with tones in noise that are about as hard
// to compress as a cabin. False if it cannot be written.
bool writeSampleRecording(const QString& path, int seconds);
