#include <HelixDash/views/ScrollableView.h>
#include <HelixDash/views/SkinColor.h>

#include <QChildEvent>
#include <QPainter>
#include <QScrollEvent>
#include <QScrollPrepareEvent>
#include <QScroller>

namespace {

constexpr int kRadius = 12;
constexpr int kBarWidth = 4;
constexpr int kBarInset = 2;
constexpr int kSmallestBar = 30;

QScrollerProperties calmScrolling() {
    QScrollerProperties properties;
    properties.setScrollMetric(QScrollerProperties::HorizontalOvershootPolicy, QScrollerProperties::OvershootAlwaysOff);
    properties.setScrollMetric(QScrollerProperties::VerticalOvershootPolicy, QScrollerProperties::OvershootAlwaysOff);
    // A control in the list shows at once that it is touched; it forgets the touch when the list begins to move.
    properties.setScrollMetric(QScrollerProperties::MousePressEventDelay, 0);
    return properties;
}

}  // namespace

// The frame and the scroll bar, above the content.
class ScrollableView::Edge : public QWidget {
public:
    explicit Edge(ScrollableView* view) : QWidget(view), mView(view) { setAttribute(Qt::WA_TransparentForMouseEvents); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(SkinColor::color("line"));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
        if (mView->scrollRange() > 0)
            paintBar(&painter);
    }

private:
    void paintBar(QPainter* painter) const {
        const QRect seen = mView->visiblePart().adjusted(0, kRadius, 0, -kRadius);
        const int all = mView->contentView()->height();
        const int length = qMax(kSmallestBar, seen.height() * seen.height() / all);
        const int top = (seen.height() - length) * mView->scrollPosition() / mView->scrollRange();
        painter->setPen(Qt::NoPen);
        painter->setBrush(SkinColor::color("edge"));
        painter->drawRoundedRect(QRectF(seen.right() - kBarInset - kBarWidth, seen.top() + top, kBarWidth, length), 2,
                                 2);
    }

    ScrollableView* mView;
};

ScrollableView::ScrollableView(DisplayView* parent)
    : DisplayView(parent), mContent(new DisplayView(this)), mEdge(new Edge(this)) {
    mContent->installEventFilter(this);
    mEdge->show();
    QScroller::grabGesture(this, QScroller::LeftMouseButtonGesture);
    QScroller* scroller = QScroller::scroller(this);
    scroller->setScrollerProperties(calmScrolling());
    connect(scroller, &QScroller::stateChanged, this, [this](QScroller::State state) {
        if (state == QScroller::Dragging)
            mContent->forgetTouches();
    });
}

QRect ScrollableView::visiblePart() const {
    QRect part = rect();
    QPoint place;
    for (const QWidget* view = this; view->parentWidget(); view = view->parentWidget()) {
        place += view->pos();
        part &= view->parentWidget()->rect().translated(-place);
        if (view->isWindow())
            break;
    }
    return part;
}

int ScrollableView::scrollPosition() const {
    return -mContent->top();
}

int ScrollableView::scrollRange() const {
    return qMax(0, mContent->height() - visiblePart().height());
}

void ScrollableView::placeContent(int position) {
    mContent->move(0, -qBound(0, position, scrollRange()));
    mEdge->update();
}

void ScrollableView::scrollTo(int position) {
    if (QScroller::hasScroller(this))
        QScroller::scroller(this)->stop();
    placeContent(position);
}

void ScrollableView::scrollToShow(int top, int height) {
    const int room = visiblePart().height();
    const int lowest = top + height - room;
    scrollTo(qMin(qMax(scrollPosition(), lowest), top));
}

bool ScrollableView::event(QEvent* event) {
    if (event->type() == QEvent::ScrollPrepare) {
        auto* prepare = static_cast<QScrollPrepareEvent*>(event);
        if (!acceptsTouch())
            return false;
        prepare->setViewportSize(visiblePart().size());
        prepare->setContentPosRange(QRectF(0, 0, 0, scrollRange()));
        prepare->setContentPos(QPointF(0, scrollPosition()));
        prepare->accept();
        return true;
    }
    if (event->type() == QEvent::Scroll) {
        placeContent(qRound(static_cast<QScrollEvent*>(event)->contentPos().y()));
        return true;
    }
    return DisplayView::event(event);
}

bool ScrollableView::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::ChildAdded:
            if (watched == mContent)
                static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
            break;
        case QEvent::ChildRemoved:
        case QEvent::Resize:
        case QEvent::Move:
        case QEvent::ShowToParent:
        case QEvent::HideToParent:
            if (watched != mContent || event->type() == QEvent::ChildRemoved)
                fitContent();
            break;
        default:
            break;
    }
    return DisplayView::eventFilter(watched, event);
}

int ScrollableView::contentHeight() const {
    int bottom = 0;
    for (const DisplayView* view : mContent->childViews()) {
        if (view->isVisible())
            bottom = qMax(bottom, view->bottom());
    }
    return bottom;
}

void ScrollableView::fitContent() {
    const QSize needed(width(), contentHeight());
    if (mContent->size() == needed)
        return;
    mContent->resize(needed.width(), needed.height());
    placeContent(scrollPosition());
}

void ScrollableView::resizeEvent(QResizeEvent* event) {
    DisplayView::resizeEvent(event);
    mEdge->resize(size());
    fitContent();
    placeContent(scrollPosition());
}

void ScrollableView::moveEvent(QMoveEvent* event) {
    DisplayView::moveEvent(event);
    placeContent(scrollPosition());
}

void ScrollableView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(SkinColor::color(backgroundColor().isEmpty() ? "panel" : backgroundColor()));
    painter.drawRoundedRect(rect(), kRadius, kRadius);
}
