#include "nvh/tables/vsmTableController.h"

#include "nvh/tables/vsmTableCell.h"

#include <HelixDash/tables/TableView.h>

#include <algorithm>
#include <utility>

namespace {

constexpr int kRowHeight = 70;
constexpr int kLookoutMs = 500;
const QString kCellKey = QStringLiteral("cellKey");

}  // namespace

vsmTableController::vsmTableController(QVariantMap conditions, QObject* parent)
    : TableController(parent), mConditions(std::move(conditions)) {
    mLookout.setInterval(kLookoutMs);
    connect(&mLookout, &QTimer::timeout, this, &vsmTableController::lookForNewDataValues);
}

void vsmTableController::updateVSMTable() {
    for (const auto& cell : mCells) {
        if (cell)
            cell->updateVSMTableCell();
    }
}

// Nobody tells of a data value that is made later.
void vsmTableController::lookForNewDataValues() {
    updateVSMTable();
    if (std::all_of(mCells.begin(), mCells.end(), [](const auto& cell) { return !cell || cell->knowsAllDataValues(); }))
        mLookout.stop();
}

void vsmTableController::toggleCellAutoControl(bool on) {
    if (mCells.size() < 2)
        return;
    for (const auto& cell : {mCells[0], mCells[1]}) {
        if (!cell)
            continue;
        cell->setAutoControl(on);
        cell->updateVSMTableCell();
    }
}

int vsmTableController::itemHeight(TableView*, const TableModelIndex&) {
    return kRowHeight;
}

TableRenderer* vsmTableController::rendererForIndex(TableView*, const TableModelIndex&) {
    return nullptr;
}

DisplayView* vsmTableController::viewForParent(DisplayView*, const TableModelIndex&) {
    return nullptr;
}

void vsmTableController::itemSelected(TableView*, const TableModelIndex&) {}

TableCell* vsmTableController::createCellForItem(TableView* table, TableModelIndex const& index) {
    const QVariantMap condition = mConditions.value(QString::number(index.row)).toMap();
    auto* cell = static_cast<vsmTableCell*>(table->dequeUnusedCell(kCellKey));
    if (!cell)
        cell = new vsmTableCell(table, kCellKey, index.row, condition.value(QStringLiteral("Name")).toString(),
                                condition.value(QStringLiteral("DataValues")).toMap(),
                                condition.value(QStringLiteral("OverrideDataValues")).toMap());
    mCells.emplace_back(cell);
    if (!cell->knowsAllDataValues())
        mLookout.start();
    return cell;
}
