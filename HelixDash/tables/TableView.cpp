#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableController.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/LabelView.h>

#include <QResizeEvent>

#include <algorithm>
#include <ctime>
#include <utility>

namespace {

constexpr int kTitleHeight = 48;
constexpr int kTitleInset = 20;
// Parts of a frame: what called for the rows takes its time too. The usual list of some rows has more of it, so that it
// is there at once.
constexpr double kSliceMs = 4;
constexpr double kFirstSliceMs = 7;
constexpr int kFirstRows = 30;

// The time for what is done at once. Only the work of this thread counts: what other programs take of the processor is
// not the rows' doing.
class Slice {
public:
    bool isOver(double limitMs) const { return now() - mBegan > limitMs; }

private:
    static double now() {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    }

    const double mBegan = now();
};

}  // namespace

TableView::TableView(DisplayView* parent) : ScrollableView(parent) {
    resizeSilently(400, 300);
    mRest.setSingleShot(true);
    connect(&mRest, &QTimer::timeout, this, &TableView::goOn);
}

TableView::~TableView() = default;

TableController* TableView::controller() const {
    return mController;
}

TableModel* TableView::model() const {
    return mModel;
}

void TableView::setController(TableController* controller) {
    mController = controller;
    clear();
    readModel();
}

void TableView::setModel(TableModel* model) {
    mModel = model;
    clear();
    readModel();
}

void TableView::clear() {
    qDeleteAll(mCells);
    mCells.clear();
    qDeleteAll(mUnused);
    mUnused.clear();
    scrollTo(0);
}

void TableView::reload() {
    mUnused.append(mCells);
    mCells.clear();
    readModel();
}

TableCell* TableView::dequeUnusedCell(const QString& key) {
    const auto found =
        std::find_if(mUnused.begin(), mUnused.end(), [&key](const TableCell* cell) { return cell->key() == key; });
    if (found == mUnused.end())
        return nullptr;
    TableCell* cell = *found;
    mUnused.erase(found);
    return cell;
}

TableCell* TableView::makeCell(const TableModelIndex& index) {
    TableCell* cell = mController->createsCells() ? mController->createCellForItem(this, index) : nullptr;
    if (cell)
        return cell;
    cell = new TableCell(this, QString());
    if (mController->createsCells())
        return cell;
    cell->mRenderer = mController->rendererForIndex(this, index);
    if (!cell->mRenderer)
        mController->viewForParent(cell->contentView(), index);
    return cell;
}

void TableView::readModel() {
    for (const auto& title : mTitles)
        delete title.second;
    mTitles.clear();
    mRows.clear();
    for (int section = 0; mController && mModel && section < mModel->sectionCount(); ++section) {
        const QString title = mModel->sectionTitle(section);
        if (!title.isEmpty()) {
            auto* label = new LabelView(title, contentView());
            label->setStyle("FontSize:24; Weight:semibold; Alignment:left|vcenter");
            mTitles.append({rowCount(), label});
        }
        for (int row = 0; row < mModel->sectionItemCount(section); ++row)
            mRows.append(Row{{section, row}, 0, 0});
    }
    layOut();
}

void TableView::layOut() {
    if (!mController && rowCount() > 0)
        return;
    mHeight = 0;
    auto title = mTitles.cbegin();
    for (int row = 0; row <= rowCount(); ++row) {
        for (; title != mTitles.cend() && title->first == row; ++title) {
            title->second->resize(width() - 2 * kTitleInset, kTitleHeight);
            title->second->move(kTitleInset, mHeight);
            mHeight += kTitleHeight;
        }
        if (row == rowCount())
            break;
        mRows[row].top = mHeight;
        mRows[row].height = qMax(0, mController->itemHeight(this, mRows[row].index));
        mHeight += mRows[row].height;
    }
    fitContent();
    mReady = 0;
    goOn();
}

void TableView::goOn() {
    const Slice slice;
    while (mController && mReady < rowCount() && !slice.isOver(mCells.size() < kFirstRows ? kFirstSliceMs : kSliceMs))
        makeRow(mReady++);
    const bool ready = mReady == rowCount() || !mController;
    if (ready)
        deleteSome(mUnused);
    if (!ready || !mUnused.isEmpty())
        mRest.start();
}

void TableView::makeRow(int number) {
    const Row& row = mRows[number];
    if (number == mCells.size())
        mCells.append(makeCell(row.index));
    mCells[number]->mLast = number == rowCount() - 1;
    mCells[number]->place(row.index, QRect(0, row.top, width(), row.height));
}

void TableView::deleteSome(QList<TableCell*>& cells) {
    const Slice slice;
    while (!cells.isEmpty() && !slice.isOver(kSliceMs))
        delete cells.takeLast();
}

void TableView::vanish() {
    deleteSome(mCells);
    if (mCells.isEmpty())
        delete this;
    else
        QMetaObject::invokeMethod(this, &TableView::vanish, Qt::QueuedConnection);
}

bool TableView::event(QEvent* event) {
    if (event->type() != QEvent::DeferredDelete)
        return ScrollableView::event(event);
    mRest.stop();
    mController = nullptr;
    mCells.append(std::exchange(mUnused, {}));
    deleteSome(mCells);
    if (mCells.isEmpty())
        return ScrollableView::event(event);
    // Hiding or disabling would go through all rows.
    setViewName(QString());
    setRight(0);
    setBottom(0);
    QMetaObject::invokeMethod(this, &TableView::vanish, Qt::QueuedConnection);
    return true;
}

TableCell* TableView::cellAt(int row) const {
    return mCells.value(row);
}

void TableView::scrollToRow(int row) {
    if (row >= 0 && row < rowCount())
        scrollToShow(mRows[row].top, mRows[row].height);
}

void TableView::resizeEvent(QResizeEvent* event) {
    ScrollableView::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        layOut();
}
