#include "HelixDash/views/TextBlock.h"

#include <QFontMetrics>
#include <QPainter>
#include <QtMath>

namespace {

constexpr qreal kNoLimit = 1e6;

QString withLineSeparators(QString text) {
    text.replace("\r\n", QString(QChar::LineSeparator));
    text.replace('\n', QChar::LineSeparator);
    text.replace('\r', QChar::LineSeparator);
    return text;
}

}  // namespace

TextBlock::TextBlock(const QString& text, const QFont& font, int wrapWidth)
    : mFont(font), mLayout(std::make_unique<QTextLayout>(withLineSeparators(text), font)) {
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
    }
    mLayout->endLayout();
    mSize = QSize(qCeil(width), qCeil(height));
    mVisibleLines = mLayout->lineCount();
}

bool TextBlock::fits(const QSize& box) const {
    return mSize.width() <= box.width() && mSize.height() <= box.height();
}

TextBlock TextBlock::fitted(const QString& text, const QFont& font, const QSize& box, int smallestPx) {
    QFont smaller = font;
    TextBlock block(text, font, box.width());
    for (int px = font.pixelSize() - 1; px >= smallestPx && !block.fits(box); --px) {
        smaller.setPixelSize(px);
        block = TextBlock(text, smaller, box.width());
    }
    block.keepLinesWithin(box.height());
    return block;
}

TextBlock TextBlock::fittedInLine(const QString& text, const QFont& font, const QSize& box, int smallestLinePx,
                                  int smallestPx) {
    QFont smaller = font;
    for (int px = font.pixelSize(); px >= smallestLinePx; --px) {
        smaller.setPixelSize(px);
        TextBlock block(text, smaller, 0);
        if (block.fits(box))
            return block;
    }
    return fitted(text, font, box, smallestPx);
}

void TextBlock::keepLinesWithin(int height) {
    while (mVisibleLines > 1 && mLayout->lineAt(mVisibleLines - 1).rect().bottom() > height)
        --mVisibleLines;
    if (isElided())
        mSize.setHeight(qCeil(mLayout->lineAt(mVisibleLines - 1).rect().bottom()));
}

void TextBlock::paint(QPainter* painter, const QRect& box, Qt::Alignment alignment) const {
    int top = box.top();  // whole pixels, or the text would blur
    if (alignment & Qt::AlignVCenter)
        top += (box.height() - mSize.height()) / 2;
    else if (alignment & Qt::AlignBottom)
        top += box.height() - mSize.height();
    for (int i = 0; i < mVisibleLines; ++i) {
        const QTextLine line = mLayout->lineAt(i);
        const bool cut = isElided() && i == mVisibleLines - 1;
        const QString rest = cut ? QFontMetrics(mFont).elidedText(mLayout->text().mid(line.textStart()).simplified(),
                                                                  Qt::ElideRight, box.width())
                                 : QString();
        const qreal width = cut ? QFontMetrics(mFont).horizontalAdvance(rest) : line.naturalTextWidth();
        qreal left = box.left();
        if (alignment & Qt::AlignHCenter)
            left += (box.width() - width) / 2;
        else if (alignment & Qt::AlignRight)
            left += box.width() - width;
        if (cut) {
            painter->setFont(mFont);
            painter->drawText(QPointF(left, top + line.y() + line.ascent()), rest);
        } else {
            line.draw(painter, QPointF(qRound(left), top));
        }
    }
}
