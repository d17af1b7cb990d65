#pragma once

// A laid-out text, for the views that draw text. Always plain text; line ends of any kind break the line. Wrapped text
// breaks between words where it can and inside a word where it must, so that nothing is wider than the width it was
// given. Not for applications.

#include <QFont>
#include <QString>
#include <QTextLayout>

#include <memory>

class QPainter;

class TextBlock {
public:
    TextBlock() = default;
    // Width 0: no wrapping.
    TextBlock(const QString& text, const QFont& font, int wrapWidth);

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

private:
    int lineCount() const { return mLayout ? mLayout->lineCount() : 0; }
    void keepLinesWithin(int height);
    bool fits(const QSize& box) const;

    QFont mFont;
    std::unique_ptr<QTextLayout> mLayout;
    QSize mSize;
    int mVisibleLines = 0;
};
