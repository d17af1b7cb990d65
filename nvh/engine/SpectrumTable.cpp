#include "nvh/engine/SpectrumTable.h"

#include <QRegularExpression>
#include <QStringList>
#include <QTextStream>

#include <algorithm>
#include <cmath>

namespace {

constexpr int kFields = 4;
constexpr int kFrequency = 0;
constexpr int kLevel = 2;

QStringList fieldsOf(const QString& line) {
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    return line.split(blanks);
}

bool isNumber(const QString& field) {
    bool ok = false;
    const double number = field.toDouble(&ok);
    return ok && !std::isnan(number);
}

}  // namespace

bool spectrumPasses(const QByteArray& table, int lowFrequency, int highFrequency, double threshold) {
    QTextStream lines(table);
    while (!lines.atEnd()) {
        const QStringList fields = fieldsOf(lines.readLine());
        const double frequency = fields.value(kFrequency).toDouble();
        const double level = fields.value(kLevel).toDouble();
        if (frequency >= lowFrequency && frequency <= highFrequency && level > threshold)
            return false;
    }
    return true;
}

SpectrumTableCheck checkSpectrumTable(const QByteArray& table) {
    SpectrumTableCheck check;
    QTextStream lines(table);
    for (int number = 1; !lines.atEnd(); ++number) {
        const QString line = lines.readLine();
        if (line.trimmed().isEmpty())
            continue;
        const QStringList fields = fieldsOf(line);
        check.hasNumbers = check.hasNumbers || std::any_of(fields.begin(), fields.end(), isNumber);
        check.hasLevels = check.hasLevels || (isNumber(fields.value(kFrequency)) && isNumber(fields.value(kLevel)));
        check.firstLine = check.isEmpty ? number : check.firstLine;
        check.lastLine = number;
        check.isCut = fieldsOf(line.trimmed()).size() < kFields;
        check.isEmpty = false;
    }
    return check;
}
