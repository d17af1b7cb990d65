#pragma once

// Where the lines of a long text end, found without shaping it. Not for applications.
//
// Shaping costs time with every letter, and with the square of a word's length: an answer of a server that fills some
// pages would stop the screen. Here each letter is as wide as it is alone, looked up once, and only the lines that are
// painted are shaped. Lines end at line ends and after blanks; a word that is longer than a line is cut. Against a
// shaped text a line may be shorter by a fraction of a letter, never longer.

#include <QFont>
#include <QString>

#include <vector>

class LongText {
public:
    // A text that is not longer is quicker shaped as a whole.
    static constexpr int kShortest = 1000;

    // Line ends are QChar::LineSeparator; width 0: no wrapping. Ends with the first line below that height.
    LongText(const QString& text, const QFont& font, int wrapWidth, int heightLimit);

    const QString& text() const { return mText; }
    int lineCount() const { return int(mStarts.size()); }
    int lineStart(int line) const { return mStarts[std::size_t(line)]; }
    // Without the blanks at its end.
    QString lineText(int line) const;
    qreal lineHeight() const { return mLineHeight; }
    // Of the widest line.
    qreal width() const { return mWidth; }

private:
    class Widths;

    // One past the end of the line that begins there; its width without the blanks at its end.
    int endOfLine(int start, qreal room, Widths& widths, qreal& width) const;

    QString mText;
    std::vector<int> mStarts;
    qreal mLineHeight = 0;
    qreal mWidth = 0;
};
