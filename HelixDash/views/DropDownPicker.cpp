#include "HelixDash/views/ChoiceRow.h"
#include "HelixDash/views/TextBlock.h"
#include "HelixDash/views/TouchTrap.h"

#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/FontManager.h>
#include <HelixDash/views/ScrollableView.h>
#include <HelixDash/views/SkinColor.h>

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kHeight = 60;
constexpr int kRadius = 12;
constexpr int kPadding = 18;
constexpr int kArrow = 8;
constexpr int kGap = 4;
constexpr int kSmallestPx = 14;

}  // namespace

DropDownPicker::DropDownPicker(DisplayView* parent, int width) : ControlBase(parent) {
    setFont(FontManager::standardFont(19, QFont::DemiBold));
    resizeSilently(width, kHeight);
}

DropDownPicker::~DropDownPicker() {
    closeList();
}

void DropDownPicker::setChoices(const QStringList& choices) {
    closeList();
    mChoices = choices;
    mChoice = choices.isEmpty() ? -1 : 0;
    update();
}

void DropDownPicker::setChoice(int choice) {
    if (choice < 0 || choice >= mChoices.size())
        return;
    mChoice = choice;
    update();
}

void DropDownPicker::openList() {
    if (mList || mChoices.isEmpty() || !acceptsTouch())
        return;
    mList = new ScrollableView(screenView());
    for (int row = 0; row < mChoices.size(); ++row) {
        auto* view = new ChoiceRow(mList->contentView(), mChoices[row], row == mChoice);
        view->resize(width(), ChoiceRow::kHeight);
        view->move(0, row * ChoiceRow::kHeight);
        connect(view, &ControlBase::released, this, [this, row] { rowReleased(row); });
    }
    placeList();
    auto* trap = new TouchTrap(mList, TouchTrap::OnOwner::Passes);
    connect(trap, &TouchTrap::touchedElsewhere, this, &DropDownPicker::closeList);
    update();
}

void DropDownPicker::placeList() {
    const DisplayView* screen = screenView();
    const int needed = int(mChoices.size()) * ChoiceRow::kHeight;
    const QPoint below = mapTo(screenView(), QPoint(0, height() + kGap));
    const int roomBelow = screen->height() - below.y();
    const int roomAbove = below.y() - height() - 2 * kGap;
    const bool down = roomBelow >= needed || roomBelow >= roomAbove;
    const int listHeight = qMin(needed, down ? roomBelow : roomAbove);
    mList->resize(width(), listHeight);
    mList->move(below.x(), down ? below.y() : below.y() - height() - 2 * kGap - listHeight);
    mList->scrollToShow(mChoice * ChoiceRow::kHeight, ChoiceRow::kHeight);
}

void DropDownPicker::closeList() {
    if (mList) {
        mList->show(false);
        mList->deleteLater();
    }
    mList.clear();
    update();
}

void DropDownPicker::rowReleased(int row) {
    closeList();
    const bool changed = row != mChoice;
    setChoice(row);
    QPointer<DropDownPicker> self = this;
    if (changed)
        emit choiceChanged(row);
    if (self)
        emit released(this);
}

void DropDownPicker::touchLost() {
    mTouched = false;
    closeList();
}

void DropDownPicker::mousePressEvent(QMouseEvent* event) {
    mTouched = event->button() == Qt::LeftButton && acceptsTouch();
    update();
}

void DropDownPicker::mouseReleaseEvent(QMouseEvent* event) {
    const bool opens = mTouched && rect().contains(event->pos());
    mTouched = false;
    update();
    if (opens)
        openList();
}

void DropDownPicker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool takes = QWidget::isEnabled();
    painter.setPen(SkinColor::color(takes ? "edge" : "line"));
    painter.setBrush(takes ? QBrush(SkinColor::color(mTouched || mList ? "track" : "panel")) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);

    const QColor ink = SkinColor::color(takes ? "black" : "faded");
    const QPointF tip(width() - kPadding - kArrow, height() / 2.0 + kArrow / 2.0);
    painter.setPen(QPen(ink, 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{tip + QPointF(-kArrow, -kArrow), tip, tip + QPointF(kArrow, -kArrow)});

    const QRect place = rect().adjusted(kPadding, 0, -2 * kPadding - 2 * kArrow, 0);
    TextBlock::fitted(mChoices.value(mChoice), font(), place.size(), kSmallestPx)
        .paint(&painter, place, Qt::AlignLeft | Qt::AlignVCenter);
}
