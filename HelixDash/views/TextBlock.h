#pragma once

// A laid-out text, for the views that draw text. Always plain text; line ends of any kind break the line. Wrapped text
// breaks between words where it can and inside a word where it must, so that nothing is wider than the width it was
// given. However long the text is, laying it out and painting what can be seen of it stays a matter of a few
// milliseconds. Not for applications.

#include <QFont>
#include <QString>
#include <QTextLayout>

#include <limits>
#include <memory>

class LongText;
class QPainter;

class TextBlock {
public:
    // Width 0: no wrapping. What lies below the height limit may be left out: the size then is beyond the limit.
    TextBlock(const QString& text, const QFont& font, int wrapWidth, int heightLimit = std::numeric_limits<int>::max());
    TextBlock(TextBlock&& other) noexcept;
    TextBlock& operator=(TextBlock&& other) noexcept;
    ~TextBlock();

    // The text in the largest size, from the font's down to smallestPx, at which it fits the box; at the smallest it is
    // cut at the box's end with an ellipsis where even that is too large.
    static TextBlock fitted(const QString& text, const QFont& font, const QSize& box, int smallestPx);

    // The same, but rather drawn smaller than broken into lines, down to smallestLinePx.
    static TextBlock fittedInLine(const QString& text, const QFont& font, const QSize& box, int smallestLinePx,
                                  int smallestPx);

    // What the text needs, rounded up to whole pixels.
    QSize size() const { return mSize; }
    // The size a text was drawn at, which is what fitted() came to.
    int fontPx() const { return mFont.pixelSize(); }
    bool isElided() const { return mVisibleLines < lineCount(); }

    void paint(QPainter* painter, const QRect& box, Qt::Alignment alignment) const;
    // The same without the lines that lie outside the clip.
    void paint(QPainter* painter, const QRect& box, Qt::Alignment alignment, const QRect& clip) const;

private:
    void layOut(const QString& text, int wrapWidth);
    int lineCount() const;
    qreal lineTop(int line) const;
    qreal lineBottom(int line) const;
    // The text from that line on.
    QString rest(int line) const;
    void keepLinesWithin(int height);
    bool fits(const QSize& box) const;
    // True if the text, laid out in this block, cannot fit the box in that size either.
    bool isHopeless(int px, const QSize& box) const;
    void paintLine(QPainter* painter, const QTextLine& line, const QRect& box, Qt::Alignment alignment, int top) const;
    // What is left of the text from that line on, cut with an ellipsis.
    void paintRest(QPainter* painter, int line, const QRect& box, Qt::Alignment alignment, int top) const;

    QFont mFont;
    std::unique_ptr<QTextLayout> mLayout;
    std::unique_ptr<LongText> mLong;  // instead of the layout
    QSize mSize;
    qreal mArea = 0;  // of the layout's lines without the blank ends
    int mVisibleLines = 0;
};
