#include <HelixDash/views/SkinColor.h>
#include <HelixDash/views/SpinnerView.h>

#include <QPainter>
#include <QTimerEvent>

namespace {

constexpr int kSizes[] = {64, 48, 32, 20};
constexpr int kTickMs = 40;
constexpr int kStepsPerTurn = 24;
constexpr int kArcSixteenths = 270 * 16;

}  // namespace

SpinnerView::SpinnerView(DisplayView* parent, int kind) : DisplayView(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    const int size = kSizes[qBound(0, kind, 3)];
    resizeSilently(size, size);
    if (QWidget::isVisible())  // since the base was made, before this class could hear of it
        mTick.start(kTickMs, this);
}

void SpinnerView::showEvent(QShowEvent* event) {
    DisplayView::showEvent(event);
    mTick.start(kTickMs, this);
}

void SpinnerView::hideEvent(QHideEvent* event) {
    DisplayView::hideEvent(event);
    mTick.stop();
}

void SpinnerView::timerEvent(QTimerEvent* event) {
    if (event->timerId() != mTick.timerId())
        return DisplayView::timerEvent(event);
    mStep = (mStep + 1) % kStepsPerTurn;
    update();
}

void SpinnerView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double stroke = qMax(2.5, width() / 9.0);
    painter.setPen(QPen(SkinColor::color("battery/blue"), stroke, Qt::SolidLine, Qt::RoundCap));
    const double inset = stroke / 2 + 0.5;
    painter.drawArc(QRectF(rect()).adjusted(inset, inset, -inset, -inset), -mStep * 360 * 16 / kStepsPerTurn,
                    kArcSixteenths);
}
