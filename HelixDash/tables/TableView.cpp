#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableController.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/LabelView.h>

#include <QResizeEvent>

#include <algorithm>

namespace {

constexpr int kTitleHeight = 48;
constexpr int kTitleInset = 20;

}  // namespace

TableView::TableView(DisplayView* parent) : ScrollableView(parent) {
    resizeSilently(400, 300);
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
    makeRows();
}

void TableView::setModel(TableModel* model) {
    mModel = model;
    clear();
    makeRows();
}

void TableView::clear() {
    qDeleteAll(mCells);
    mCells.clear();
    scrollTo(0);
}

void TableView::reload() {
    mUnused = mCells;
    mCells.clear();
    makeRows();
    qDeleteAll(mUnused);
    mUnused.clear();
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

void TableView::makeRows() {
    for (const auto& title : mTitles)
        delete title.second;
    mTitles.clear();
    mIndexes.clear();
    if (!mController || !mModel)
        return;
    for (int section = 0; section < mModel->sectionCount(); ++section) {
        const QString title = mModel->sectionTitle(section);
        if (!title.isEmpty()) {
            auto* label = new LabelView(title, contentView());
            label->setStyle("FontSize:24; Weight:semibold; Alignment:left|vcenter");
            mTitles.append({rowCount(), label});
        }
        for (int row = 0; row < mModel->sectionItemCount(section); ++row) {
            mIndexes.append({section, row});
            mCells.append(makeCell(mIndexes.last()));
        }
    }
    layOut();
}

void TableView::layOut() {
    if (!mController)
        return;
    int top = 0;
    auto title = mTitles.cbegin();
    for (int row = 0; row <= rowCount(); ++row) {
        for (; title != mTitles.cend() && title->first == row; ++title) {
            title->second->resize(width() - 2 * kTitleInset, kTitleHeight);
            title->second->move(kTitleInset, top);
            top += kTitleHeight;
        }
        if (row == rowCount())
            break;
        const int height = qMax(0, mController->itemHeight(this, mIndexes[row]));
        mCells[row]->mLast = row == rowCount() - 1;
        mCells[row]->place(mIndexes[row], QRect(0, top, width(), height));
        top += height;
    }
}

TableCell* TableView::cellAt(int row) const {
    return mCells.value(row);
}

void TableView::scrollToRow(int row) {
    if (const TableCell* cell = cellAt(row))
        scrollToShow(cell->top(), cell->height());
}

void TableView::resizeEvent(QResizeEvent* event) {
    ScrollableView::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        layOut();
}
