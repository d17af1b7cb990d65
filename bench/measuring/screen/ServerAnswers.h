#pragma once

#include "bench/measuring/LoopWatch.h"
#include "bench/measuring/Report.h"
#include "bench/measuring/screen/RecorderScreen.h"

#include <QApplication>

// The longest event of the UI thread while a server answers the question for the vehicle tests with far more than a
// screen can show: a list of 3,000 rows, 20 MB, and an error of one word of 200 kB. The configuration names the server
// meanwhile. A reason if an answer does not reach the screen.
std::vector<Figure> measureServerAnswers(RecorderScreen& recorder, LoopWatch<QApplication>& watch, QString& error);
