#include "nvh/tables/vdtTableController.h"

#include "nvh/engine/Settings.h"
#include "nvh/tables/vdtTestCell.h"

#include <HelixDash/json/KJson.h>
#include <HelixDash/tables/TableView.h>

#include <QFile>

#include <utility>

namespace {

constexpr int kRowHeight = 135;
const QString kCellKey = QStringLiteral("cellKey");
const QString kName = QStringLiteral("Name");
const QString kValue = QStringLiteral("Value");

}  // namespace

vdtTableController::vdtTableController(QVariantMap tests, QObject* parent)
    : TableController(parent), mTests(std::move(tests)) {}

void vdtTableController::rememberMarks() {
    for (const auto& cell : mCells) {
        if (cell)
            mMarks.insert(QString::number(cell->row()), QVariantMap{{kName, cell->name()}, {kValue, cell->mark()}});
    }
}

void vdtTableController::collectVdtResults() {
    rememberMarks();
    QFile file(cVdtStaticFilename.value());
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(KJson::Serializer::serialize(mMarks));
}

int vdtTableController::itemHeight(TableView*, const TableModelIndex&) {
    return kRowHeight;
}

TableRenderer* vdtTableController::rendererForIndex(TableView*, const TableModelIndex&) {
    return nullptr;
}

DisplayView* vdtTableController::viewForParent(DisplayView*, const TableModelIndex&) {
    return nullptr;
}

void vdtTableController::itemSelected(TableView*, const TableModelIndex&) {}

TableCell* vdtTableController::createCellForItem(TableView* table, TableModelIndex const& index) {
    auto* cell = static_cast<vdtTestCell*>(table->dequeUnusedCell(kCellKey));
    if (!cell) {
        const QVariantMap test = mTests.value(QString::number(index.row)).toMap();
        cell = new vdtTestCell(table, kCellKey, index.row, test.value(kName).toString());
    }
    mCells.emplace_back(cell);
    return cell;
}
