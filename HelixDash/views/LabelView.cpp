#include "HelixDash/views/TextBlock.h"

#include <HelixDash/views/FontManager.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SkinColor.h>

#include <QEvent>
#include <QPainter>

namespace {

constexpr int kStandardPx = 24;
constexpr int kSmallestGrowingPx = 16;
constexpr int kSmallestPx = 12;
// A text is about as wide as its font is large; one that would be so much wider than its room need not be tried.
constexpr double kWidest = 1.1;

}  // namespace

LabelView::LabelView(DisplayView* parent) : LabelView(QString(), parent) {}

LabelView::LabelView(const QString& text, DisplayView* parent) : DisplayView(parent), mText(text) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFont(FontManager::standardFont(kStandardPx));
}

LabelView::~LabelView() = default;

void LabelView::setText(const QString& text) {
    if (text == mText)
        return;
    mText = text;
    mWrapped.reset();
    lookChanged();
}

void LabelView::setSkinColor(const QString& name) {
    mSkinColor = name;
    update();
}

void LabelView::setFontSize(int px) {
    QFont sized = font();
    sized.setPixelSize(qMax(1, px));
    setFont(sized);
}

void LabelView::resizeToFit(int width) {
    const int wrapWidth = qMax(1, width);
    const int room = qMax(1, wrapWidth - 2 * padding());
    auto whole = std::make_unique<TextBlock>(mText, font(), room);
    resize(wrapWidth, whole->size().height() + 2 * padding());
    mBlock = std::move(whole);
}

QSize LabelView::textSize(int limit) const {
    if (!mNatural)
        mNatural = TextBlock(mText, font(), 0).size();
    if (mNatural->width() <= limit)
        return *mNatural;
    QFont small = font();
    for (int px = small.pixelSize() - 1; px >= kSmallestGrowingPx; --px) {
        if (mNatural->width() * px > limit * font().pixelSize() * kWidest)
            continue;
        small.setPixelSize(px);
        if (TextBlock(mText, small, 0).size().width() <= limit)
            return {limit, mNatural->height()};
    }
    small.setPixelSize(qMin(small.pixelSize(), kSmallestGrowingPx));
    return {limit, qMax(mNatural->height(), wrappedHeight(small, limit))};
}

int LabelView::wrappedHeight(const QFont& small, int limit) const {
    if (!mWrapped || mWrapped->small != small || mWrapped->limit != limit)
        mWrapped = Wrapped{small, limit, TextBlock(mText, small, limit).size().height()};
    return mWrapped->height;
}

QSize LabelView::sizeHint() const {
    return neededSize();
}

QSize LabelView::neededSize() const {
    const int inParent = parentWidget() ? parentWidget()->width() - x() : QWIDGETSIZE_MAX;
    const int limit = qMin(maximumWidth(), inParent > 0 ? inParent : QWIDGETSIZE_MAX);
    const int around = 2 * padding();
    return textSize(qMax(1, limit - around)) + QSize(around, around);
}

int LabelView::padding() const {
    return viewStyle().number("Padding", 0);
}

QRect LabelView::textPlace() const {
    return rect().adjusted(padding(), padding(), -padding(), -padding());
}

void LabelView::lookChanged() {
    mNatural.reset();
    grow();
}

void LabelView::grow() {
    mBlock.reset();
    if (!mHasSize) {
        const QSize needed = neededSize();
        resizeSilently(needed.width(), needed.height());
    }
    update();
}

const TextBlock& LabelView::block() const {
    if (!mBlock)
        mBlock = std::make_unique<TextBlock>(TextBlock::fitted(mText, font(), textPlace().size(), kSmallestPx));
    return *mBlock;
}

void LabelView::styleChanged() {
    setFont(FontManager::standardFont(viewStyle().number("FontSize", fontSize()),
                                      viewStyle().weight(static_cast<QFont::Weight>(font().weight()))));
    if (viewStyle().has("Color"))
        mSkinColor = viewStyle().value("Color");
    grow();
}

void LabelView::sizeChosen() {
    mHasSize = true;
}

void LabelView::changeEvent(QEvent* event) {
    DisplayView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        lookChanged();
}

void LabelView::moveEvent(QMoveEvent* event) {
    DisplayView::moveEvent(event);
    if (!mHasSize)
        grow();
}

void LabelView::resizeEvent(QResizeEvent* event) {
    DisplayView::resizeEvent(event);
    mBlock.reset();
}

void LabelView::paintEvent(QPaintEvent* event) {
    DisplayView::paintEvent(event);
    if (mText.isEmpty())
        return;
    QPainter painter(this);
    painter.setPen(SkinColor::color(mSkinColor));
    block().paint(&painter, textPlace(), viewStyle().alignment(Qt::AlignLeft | Qt::AlignTop), event->rect());
}
