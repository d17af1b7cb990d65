#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableController.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/SkinColor.h>

#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int kLineInset = 20;

}  // namespace

TableCell::TableCell(TableView* table, const QString& key)
    : DisplayView(table ? table->contentView() : nullptr), mTable(table), mKey(key), mContent(new DisplayView(this)) {}

void TableCell::populate() {}

void TableCell::place(const TableModelIndex& index, const QRect& where) {
    const bool again = mPlaced && where.size() == size();
    mIndex = index;
    mPlaced = true;
    move(where.left(), where.top());
    resize(where.width(), where.height());
    if (!again)
        populate();
}

void TableCell::resizeEvent(QResizeEvent* event) {
    DisplayView::resizeEvent(event);
    mContent->resize(width(), height());
}

void TableCell::touchLost() {
    mTouched = false;
}

void TableCell::mousePressEvent(QMouseEvent* event) {
    mTouched = event->button() == Qt::LeftButton && acceptsTouch();
}

void TableCell::mouseReleaseEvent(QMouseEvent* event) {
    const bool selected = mTouched && rect().contains(event->pos());
    mTouched = false;
    if (selected && mTable && mTable->controller())
        mTable->controller()->itemSelected(mTable, mIndex);
}

void TableCell::paintEvent(QPaintEvent* event) {
    DisplayView::paintEvent(event);
    QPainter painter(this);
    if (mRenderer)
        mRenderer->paint(&painter, rect(), mIndex);
    if (!mLast)
        painter.fillRect(kLineInset, height() - 1, width() - 2 * kLineInset, 1, SkinColor::color("line"));
}
