#pragma once

#include <QByteArray>
#include <QString>

// What came from elsewhere (a child program, a server, a file) as text that acts on nobody's terminal or log: control
// characters, those of C1 and the Unicode line and paragraph separators among them, are written as \xNN or \uNNNN.
namespace PlainText {

// For a field of a log line: line ends are written as \n, tabs as \t and backslashes as \\, so that the text can be
// had back but for the kind of its line ends.
QString field(const QString& text);

// For lines on a terminal: line ends, tabs and backslashes stay.
QString lines(const QString& text);

// The same of what is printed with printf("%s").
inline QByteArray printable(const QString& text) {
    return lines(text).toLocal8Bit();
}

}  // namespace PlainText
