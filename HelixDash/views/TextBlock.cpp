#include "HelixDash/views/TextBlock.h"

#include "HelixDash/views/LongText.h"

#include <QFontMetrics>
#include <QPainter>
#include <QtMath>

namespace {

constexpr qreal kNoLimit = 1e6;
// Text does not shrink exactly with its font, and no size that is to be tried may be passed over.
constexpr qreal kShrinkage = 0.95;

QString withLineSeparators(QString text) {
    text.replace("\r\n", QString(QChar::LineSeparator));
    text.replace('\n', QChar::LineSeparator);
    text.replace('\r', QChar::LineSeparator);
    return text;
}

qreal leftOf(qreal width, const QRect& box, Qt::Alignment alignment) {
    if (alignment & Qt::AlignHCenter)
        return box.left() + (box.width() - width) / 2;
    return alignment & Qt::AlignRight ? box.left() + box.width() - width : box.left();
}

}  // namespace

TextBlock::TextBlock(const QString& text, const QFont& font, int wrapWidth, int heightLimit) : mFont(font) {
    if (text.size() > LongText::kShortest) {
        mLong = std::make_unique<LongText>(withLineSeparators(text), font, wrapWidth, heightLimit);
        mSize = QSize(qCeil(mLong->width()), qCeil(mLong->lineCount() * mLong->lineHeight()));
    } else {
        layOut(withLineSeparators(text), wrapWidth);
    }
    mVisibleLines = lineCount();
}

TextBlock::TextBlock(TextBlock&& other) noexcept = default;
TextBlock& TextBlock::operator=(TextBlock&& other) noexcept = default;
TextBlock::~TextBlock() = default;

void TextBlock::layOut(const QString& text, int wrapWidth) {
    mLayout = std::make_unique<QTextLayout>(text, mFont);
    QTextOption option;
    option.setWrapMode(wrapWidth > 0 ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::ManualWrap);
    mLayout->setTextOption(option);
    mLayout->setCacheEnabled(true);
    qreal width = 0;
    qreal height = 0;
    mLayout->beginLayout();
    for (QTextLine line = mLayout->createLine(); line.isValid(); line = mLayout->createLine()) {
        line.setLineWidth(wrapWidth > 0 ? wrapWidth : kNoLimit);
        line.setPosition({0, height});
        height += line.height();
        width = qMax(width, line.naturalTextWidth());
        mArea += line.naturalTextWidth() * line.height();
    }
    mLayout->endLayout();
    mSize = QSize(qCeil(width), qCeil(height));
}

int TextBlock::lineCount() const {
    return mLong ? mLong->lineCount() : mLayout->lineCount();
}

qreal TextBlock::lineTop(int line) const {
    return mLong ? line * mLong->lineHeight() : mLayout->lineAt(line).y();
}

qreal TextBlock::lineBottom(int line) const {
    return mLong ? (line + 1) * mLong->lineHeight() : mLayout->lineAt(line).rect().bottom();
}

QString TextBlock::rest(int line) const {
    // More than one line cannot show.
    return mLong ? mLong->text().mid(mLong->lineStart(line), LongText::kShortest)
                 : mLayout->text().mid(mLayout->lineAt(line).textStart());
}

bool TextBlock::fits(const QSize& box) const {
    return mSize.width() <= box.width() && mSize.height() <= box.height();
}

bool TextBlock::isHopeless(int px, const QSize& box) const {
    const qreal scale = qreal(px) / mFont.pixelSize();
    return mArea * scale * scale * kShrinkage > qreal(box.width()) * box.height();
}

TextBlock TextBlock::fitted(const QString& text, const QFont& font, const QSize& box, int smallestPx) {
    QFont smaller = font;
    TextBlock block(text, font, box.width(), box.height());
    const int largestPx = font.pixelSize() - 1;
    for (int px = largestPx; px >= smallestPx && !block.fits(box); --px) {
        if (px > smallestPx && block.isHopeless(px, box))
            continue;
        smaller.setPixelSize(px);
        block = TextBlock(text, smaller, box.width(), box.height());
    }
    block.keepLinesWithin(box.height());
    return block;
}

TextBlock TextBlock::fittedInLine(const QString& text, const QFont& font, const QSize& box, int smallestLinePx,
                                  int smallestPx) {
    QFont smaller = font;
    for (int px = font.pixelSize(); px >= smallestLinePx; --px) {
        smaller.setPixelSize(px);
        TextBlock block(text, smaller, 0, box.height());
        if (block.fits(box))
            return block;
    }
    return fitted(text, font, box, smallestPx);
}

void TextBlock::keepLinesWithin(int height) {
    while (mVisibleLines > 1 && lineBottom(mVisibleLines - 1) > height)
        --mVisibleLines;
    if (isElided())
        mSize.setHeight(qCeil(lineBottom(mVisibleLines - 1)));
}

void TextBlock::paint(QPainter* painter, const QRect& box, Qt::Alignment alignment) const {
    paint(painter, box, alignment, box);
}

void TextBlock::paint(QPainter* painter, const QRect& box, Qt::Alignment alignment, const QRect& clip) const {
    int top = box.top();  // whole pixels, or the text would blur
    if (alignment & Qt::AlignVCenter)
        top += (box.height() - mSize.height()) / 2;
    else if (alignment & Qt::AlignBottom)
        top += box.height() - mSize.height();
    // The tip of an accent may reach beyond its line.
    const int tip = mFont.pixelSize();
    for (int i = 0; i < mVisibleLines && top + lineTop(i) <= clip.bottom() + tip; ++i) {
        if (top + lineBottom(i) < clip.top() - tip)
            continue;
        if (isElided() && i == mVisibleLines - 1) {
            paintRest(painter, i, box, alignment, top);
        } else if (mLong) {
            const TextBlock line(mLong->lineText(i), mFont, 0);
            line.paintLine(painter, line.mLayout->lineAt(0), box, alignment, top + qRound(lineTop(i)));
        } else {
            paintLine(painter, mLayout->lineAt(i), box, alignment, top);
        }
    }
}

void TextBlock::paintLine(QPainter* painter, const QTextLine& line, const QRect& box, Qt::Alignment alignment,
                          int top) const {
    line.draw(painter, QPointF(qRound(leftOf(line.naturalTextWidth(), box, alignment)), top));
}

void TextBlock::paintRest(QPainter* painter, int line, const QRect& box, Qt::Alignment alignment, int top) const {
    const QFontMetrics metrics(mFont);
    const QString cut = metrics.elidedText(rest(line).simplified(), Qt::ElideRight, box.width());
    painter->setFont(mFont);
    // On the baseline that the line would have.
    const qreal ascent = mLong ? QFontMetricsF(mFont).ascent() : mLayout->lineAt(line).ascent();
    painter->drawText(QPointF(leftOf(metrics.horizontalAdvance(cut), box, alignment), top + lineTop(line) + ascent),
                      cut);
}
