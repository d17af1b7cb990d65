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

}  // namespace

LabelView::LabelView(DisplayView* parent) : LabelView(QString(), parent) {}

LabelView::LabelView(const QString& text, DisplayView* parent) : DisplayView(parent), mText(text) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFont(FontManager::standardFont(kStandardPx));
    textChanged();
}

LabelView::~LabelView() = default;

void LabelView::setText(const QString& text) {
    if (text == mText)
        return;
    mText = text;
    textChanged();
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
    resize(wrapWidth, TextBlock(mText, font(), wrapWidth).size().height());
}

QSize LabelView::sizeHint() const {
    const QSize natural = TextBlock(mText, font(), 0).size();
    const int limit = widthLimit();
    if (natural.width() <= limit)
        return natural;
    QFont small = font();
    for (int px = small.pixelSize() - 1; px >= kSmallestGrowingPx; --px) {
        small.setPixelSize(px);
        if (TextBlock(mText, small, 0).size().width() <= limit)
            return {limit, natural.height()};
    }
    return {limit, qMax(natural.height(), TextBlock(mText, small, limit).size().height())};
}

int LabelView::widthLimit() const {
    const int room = parentWidget() ? parentWidget()->width() - x() : QWIDGETSIZE_MAX;
    return qMin(maximumWidth(), room > 0 ? room : QWIDGETSIZE_MAX);
}

void LabelView::textChanged() {
    mBlock.reset();
    if (!mHasSize)
        QWidget::resize(sizeHint());
    update();
}

const TextBlock& LabelView::block() const {
    if (!mBlock)
        mBlock = std::make_unique<TextBlock>(TextBlock::fitted(mText, font(), size(), kSmallestPx));
    return *mBlock;
}

void LabelView::styleChanged() {
    setFont(FontManager::standardFont(viewStyle().number("FontSize", fontSize()),
                                      viewStyle().weight(static_cast<QFont::Weight>(font().weight()))));
    if (viewStyle().has("Color"))
        mSkinColor = viewStyle().value("Color");
    textChanged();
}

void LabelView::sizeChosen() {
    mHasSize = true;
}

void LabelView::changeEvent(QEvent* event) {
    DisplayView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        textChanged();
}

void LabelView::moveEvent(QMoveEvent* event) {
    DisplayView::moveEvent(event);
    if (!mHasSize)
        textChanged();
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
    block().paint(&painter, rect(), viewStyle().alignment(Qt::AlignLeft | Qt::AlignTop));
}
