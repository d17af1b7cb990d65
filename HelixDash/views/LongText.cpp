#include "HelixDash/views/LongText.h"

#include <QFontMetricsF>
#include <QHash>

#include <array>

namespace {

// No screen shows so many letters side by side, and what is painted at once stays quickly shaped.
constexpr int kLongestLine = 1000;
constexpr int kLatin1 = 256;
// Looking up a letter of another script may take as long as laying out a line.
constexpr int kMostOthers = 500;
constexpr qreal kUnknownEm = 1.5;
// Qt's tab stops.
constexpr qreal kTab = 80;

bool isBlank(QChar letter) {
    return letter == QLatin1Char(' ') || letter == QLatin1Char('\t');
}

}  // namespace

// What each letter takes.
class LongText::Widths {
public:
    explicit Widths(const QFont& font) : mMetrics(font), mUnknown(kUnknownEm * font.pixelSize()) { mLatin1.fill(-1); }

    qreal operator()(QChar letter) {
        if (letter == QLatin1Char('\t'))
            return kTab;
        if (letter.unicode() >= kLatin1)
            return other(letter);
        qreal& width = mLatin1[letter.unicode()];
        if (width < 0)
            width = mMetrics.horizontalAdvance(letter);
        return width;
    }

private:
    qreal other(QChar letter) {
        if (letter.isSurrogate())
            return letter.isHighSurrogate() ? mUnknown : 0;
        const auto known = mOthers.constFind(letter);
        if (known != mOthers.cend())
            return *known;
        return mOthers.size() < kMostOthers ? *mOthers.insert(letter, mMetrics.horizontalAdvance(letter)) : mUnknown;
    }

    const QFontMetricsF mMetrics;
    const qreal mUnknown;
    std::array<qreal, kLatin1> mLatin1{};
    QHash<QChar, qreal> mOthers;
};

LongText::LongText(const QString& text, const QFont& font, int wrapWidth, int heightLimit)
    : mText(text), mLineHeight(qCeil(QFontMetricsF(font).height())) {
    Widths widths(font);
    const qreal room = wrapWidth > 0 ? wrapWidth : 1e6;
    for (int start = 0; start < mText.size() && mLineHeight * lineCount() <= heightLimit;) {
        qreal width = 0;
        mStarts.push_back(start);
        start = endOfLine(start, room, widths, width);
        mWidth = qMax(mWidth, width);
    }
}

int LongText::endOfLine(int start, qreal room, Widths& widths, qreal& width) const {
    const int size = int(mText.size());
    int afterBlank = start;      // where the line can be broken
    qreal widthBeforeBlank = 0;  // and how wide it is then
    qreal end = 0;               // with blanks
    for (int i = start; i < size; ++i) {
        const QChar letter = mText.at(i);
        if (letter == QChar::LineSeparator)
            return i + 1;
        end += widths(letter);
        if (isBlank(letter)) {
            // Blanks hang over the end of a line and take no room.
            afterBlank = i + 1;
            widthBeforeBlank = width;
            continue;
        }
        const bool full = end > room || i - start >= kLongestLine;
        if (full && afterBlank > start) {
            width = widthBeforeBlank;
            return afterBlank;
        }
        // Not before a mark that belongs to the letter in front of it, and never an empty line.
        if (full && i > start && (!letter.isMark() || i - start >= kLongestLine) && !letter.isLowSurrogate())
            return i;
        width = end;
    }
    return size;
}

QString LongText::lineText(int line) const {
    const int start = lineStart(line);
    int end = line + 1 < lineCount() ? lineStart(line + 1) : int(mText.size());
    end = qMin(end, start + kLongestLine);
    while (end > start && (isBlank(mText.at(end - 1)) || mText.at(end - 1) == QChar::LineSeparator))
        --end;
    return mText.mid(start, end - start);
}
