#include <HelixDash/views/DisplayView.h>
#include <HelixDash/views/SkinColor.h>

#include <QCoreApplication>
#include <QEvent>
#include <QMoveEvent>
#include <QPainter>
#include <QResizeEvent>

namespace {

QEasingCurve curveFor(EaseType ease) {
    switch (ease) {
        case EaseType::Linear:
            return QEasingCurve::Linear;
        case EaseType::In:
            return QEasingCurve::InCubic;
        case EaseType::Out:
            return QEasingCurve::OutCubic;
        case EaseType::InOut:
            return QEasingCurve::InOutCubic;
    }
    return QEasingCurve::Linear;
}

}  // namespace

DisplayView::DisplayView(DisplayView* parent) : QWidget(parent) {
    // Qt hides a child that is made after its parent came on screen; a view is there from the start.
    if (parent)
        QWidget::setVisible(true);
}

DisplayView::~DisplayView() = default;

void DisplayView::stop(QPointer<QVariantAnimation>& running) {
    if (running)
        running->stop();  // deletes itself, later: this may be called from its own signal
}

void DisplayView::animate(QPointer<QVariantAnimation>& running, const QVariant& from, const QVariant& to, EaseType ease,
                          int ms) {
    running = new QVariantAnimation(this);
    running->setStartValue(from);
    running->setEndValue(to);
    running->setEasingCurve(curveFor(ease));
    running->setDuration(ms);
}

// Qt tells a widget of its place and size only when it comes on screen. What is laid out before that has to be right at
// once, so the views are told at once.

void DisplayView::takePlace(const QPoint& place) {
    const QPoint before = pos();
    QWidget::move(place);
    if (testAttribute(Qt::WA_PendingMoveEvent)) {
        setAttribute(Qt::WA_PendingMoveEvent, false);
        QMoveEvent moved(pos(), before);
        QCoreApplication::sendEvent(this, &moved);
    }
}

void DisplayView::takeSize(const QSize& size) {
    const QSize before = this->size();
    QWidget::resize(size);
    if (testAttribute(Qt::WA_PendingResizeEvent)) {
        setAttribute(Qt::WA_PendingResizeEvent, false);
        QResizeEvent resized(this->size(), before);
        QCoreApplication::sendEvent(this, &resized);
    }
}

void DisplayView::moveTo(const QPoint& place, EaseType ease, int ms) {
    stop(mMoving);
    if (ms <= 0) {
        takePlace(place);
        return;
    }
    animate(mMoving, pos(), place, ease, ms);
    connect(mMoving, &QVariantAnimation::valueChanged, this, [this](const QVariant& now) { takePlace(now.toPoint()); });
    mMoving->start(QAbstractAnimation::DeleteWhenStopped);
}

void DisplayView::resizeTo(const QSize& size, EaseType ease, int ms) {
    stop(mResizing);
    sizeChosen();
    if (ms <= 0) {
        takeSize(size);
        return;
    }
    animate(mResizing, this->size(), size, ease, ms);
    connect(mResizing, &QVariantAnimation::valueChanged, this, [this](const QVariant& now) { takeSize(now.toSize()); });
    mResizing->start(QAbstractAnimation::DeleteWhenStopped);
}

void DisplayView::move(int left, int top, EaseType ease, int ms) {
    moveTo({left, top}, ease, ms);
}

void DisplayView::resize(int width, int height, EaseType ease, int ms) {
    resizeTo({width, height}, ease, ms);
}

void DisplayView::setLeft(int px, EaseType ease, int ms) {
    moveTo({px, top()}, ease, ms);
}

void DisplayView::setTop(int px, EaseType ease, int ms) {
    moveTo({left(), px}, ease, ms);
}

void DisplayView::setRight(int px, EaseType ease, int ms) {
    moveTo({px - width(), top()}, ease, ms);
}

void DisplayView::setBottom(int px, EaseType ease, int ms) {
    moveTo({left(), px - height()}, ease, ms);
}

void DisplayView::setWidth(int px, EaseType ease, int ms) {
    resizeTo({px, height()}, ease, ms);
}

void DisplayView::setHeight(int px, EaseType ease, int ms) {
    resizeTo({width(), px}, ease, ms);
}

void DisplayView::show(bool visible) {
    setVisible(visible);
}

void DisplayView::setVisible(bool visible) {
    const bool changed = visible != mVisible;
    mVisible = visible;
    if (changed && !visible)
        touchLost();
    QWidget::setVisible(visible);
    if (!changed)
        return;
    if (visible)
        shown();
    else
        hidden();
}

void DisplayView::setEnabled(bool on) {
    const bool changed = on != mEnabled;
    mEnabled = on;
    QWidget::setEnabled(on);
    if (changed)
        enabledFlagChanged(on);
}

bool DisplayView::acceptsTouch() const {
    return mVisible && QWidget::isEnabled();
}

void DisplayView::setStyle(const Style& style) {
    mStyle = style;
    styleChanged();
    update();
}

void DisplayView::setBackgroundColor(const QString& skinColor) {
    mBackgroundColor = skinColor;
    update();
}

QList<DisplayView*> DisplayView::childViews() const {
    QList<DisplayView*> views;
    for (QObject* child : children()) {
        if (auto* view = qobject_cast<DisplayView*>(child))
            views.append(view);
    }
    return views;
}

DisplayView* DisplayView::parentView() const {
    return qobject_cast<DisplayView*>(parentWidget());
}

DisplayView* DisplayView::screenView() {
    DisplayView* view = this;
    while (DisplayView* outer = view->parentView())
        view = outer;
    return view;
}

void DisplayView::shown() {}

void DisplayView::hidden() {}

void DisplayView::styleChanged() {}

void DisplayView::sizeChosen() {}

void DisplayView::enabledFlagChanged(bool) {}

void DisplayView::touchLost() {}

void DisplayView::forgetTouches() {
    touchLost();
    for (DisplayView* view : childViews())
        view->forgetTouches();
}

void DisplayView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange) {
        if (!QWidget::isEnabled())
            touchLost();
        update();
    }
}

void DisplayView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    touchLost();
}

void DisplayView::paintEvent(QPaintEvent*) {
    if (mBackgroundColor.isEmpty())
        return;
    QPainter painter(this);
    painter.fillRect(rect(), SkinColor::color(mBackgroundColor));
}
