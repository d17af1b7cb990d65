#pragma once

#include "bench/measuring/LoopWatch.h"
#include "bench/measuring/Report.h"

#include <QCoreApplication>

// Packing 60 s of recording through the package manager against the bare shell pipeline; both bring it to the disk.
Measurement packingMeasurement();

// Value changes that a logger writes without losing one against a bare fprintf loop.
Measurement loggerMeasurement();

// The longest time that the UI thread was away from its event loop in a test run on the bench, outside stop().
Measurement testRunMeasurement(LoopWatch<QCoreApplication>& watch);

// The analysis of 60 s of recording at FFT size 8192 against a spectrogram by sox.
Measurement whineMeasurement();

// Frames that the CAN client logs from loopback without losing one, 100 to a datagram, against a bare recvfrom loop
// that prints the same lines.
Measurement canMeasurement();
