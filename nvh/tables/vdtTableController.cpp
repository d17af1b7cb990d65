#include "nvh/tables/vdtTableController.h"

#include "nvh/engine/Settings.h"
#include "nvh/files/OwnFile.h"
#include "nvh/files/SystemWords.h"
#include "nvh/tables/vdtTestCell.h"

#include <HelixDash/json/KJson.h>
#include <HelixDash/tables/TableView.h>

#include <cerrno>
#include <utility>

namespace {

constexpr int kRowHeight = 135;
const QString kCellKey = QStringLiteral("cellKey");
const QString kName = QStringLiteral("Name");
const QString kValue = QStringLiteral("Value");

QVariantMap entry(const QString& name, const QString& mark) {
    return {{kName, name}, {kValue, mark}};
}

}  // namespace

vdtTableController::vdtTableController(QVariantMap tests, QObject* parent)
    : TableController(parent), mTests(std::move(tests)) {}

void vdtTableController::rememberMarks() {
    for (const auto& cell : mCells) {
        if (cell)
            mMarks.insert(cell->row(), {cell->name(), cell->mark()});
    }
}

void vdtTableController::collectVdtResults() {
    rememberMarks();
    QVariantMap results;
    for (int row = 0; row < int(mTests.size()); ++row) {
        if (!mMarks.contains(row))
            results.insert(QString::number(row), entry(nameOf(row), vdtTestCell::untouchedMark()));
    }
    for (auto mark = mMarks.cbegin(); mark != mMarks.cend(); ++mark)
        results.insert(QString::number(mark.key()), entry(mark->name, mark->mark));
    const QString file = cVdtStaticFilename.value();
    mWhyNoMarks.clear();
    if (writeOwnFile(file, KJson::Serializer::serialize(results)))
        return;
    const QString reason = systemWord(errno);
    mWhyNoMarks = whyNotOwn(file);
    if (mWhyNoMarks.isEmpty())
        mWhyNoMarks = QStringLiteral("%1: %2").arg(file, reason);
}

QString vdtTableController::nameOf(int row) const {
    return mTests.value(QString::number(row)).toMap().value(kName).toString();
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
    if (!cell)
        cell = new vdtTestCell(table, kCellKey, index.row, nameOf(index.row));
    mCells.emplace_back(cell);
    return cell;
}
