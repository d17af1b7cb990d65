#include "host/setup/PlainText.h"

namespace {

bool isControl(QChar letter) {
    const char16_t code = letter.unicode();
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || letter == QChar::LineSeparator ||
           letter == QChar::ParagraphSeparator;
}

QString code(QChar letter) {
    const int number = letter.unicode();
    return number < 0x100 ? QStringLiteral("\\x%1").arg(number, 2, 16, QLatin1Char('0'))
                          : QStringLiteral("\\u%1").arg(number, 4, 16, QLatin1Char('0'));
}

// Writes out every control character but those to keep.
QString withCodes(const QString& text, const char* kept) {
    QString plain;
    plain.reserve(text.size());
    for (const QChar letter : text) {
        if (isControl(letter) && !QLatin1String(kept).contains(letter))
            plain += code(letter);
        else
            plain += letter;
    }
    return plain;
}

}  // namespace

QString PlainText::field(const QString& text) {
    QString escaped = text;
    escaped.replace(QLatin1String("\\"), QLatin1String("\\\\"));
    escaped.replace(QLatin1String("\t"), QLatin1String("\\t"));
    for (const char* lineEnd : {"\r\n", "\n", "\r"})
        escaped.replace(QLatin1String(lineEnd), QLatin1String("\\n"));
    return withCodes(escaped, "");
}

QString PlainText::lines(const QString& text) {
    QString unix = text;
    return withCodes(unix.replace(QLatin1String("\r\n"), QLatin1String("\n")), "\n\t");
}
