#include "bench/measuring/Report.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>

bool Figure::asWanted() const {
    return (!atMost || value <= *atMost) && (!atLeast || value >= *atLeast);
}

void printFigure(const Figure& figure) {
    QString verdict;
    if (figure.atMost)
        verdict = QStringLiteral("wanted at most %1").arg(*figure.atMost);
    else if (figure.atLeast)
        verdict = QStringLiteral("wanted at least %1").arg(*figure.atLeast);
    if (!verdict.isEmpty())
        verdict += figure.asWanted() ? QStringLiteral(": yes") : QStringLiteral(": NO");
    const QString beside = figure.reference.isEmpty() ? QString() : QStringLiteral(" against ") + figure.reference;
    std::printf("%-44s %10.3f %-3s  %s%s  %s\n", qPrintable(figure.what), figure.value, qPrintable(figure.unit),
                qPrintable(figure.measured), qPrintable(beside), qPrintable(verdict));
    std::fflush(stdout);
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double secondsOf(const std::function<void()>& work) {
    QElapsedTimer clock;
    clock.start();
    work();
    return double(clock.nsecsElapsed()) / 1e9;
}
