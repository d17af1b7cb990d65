#pragma once

#include "nvh/Export.h"

#include <HelixDash/tables/TableController.h>

#include <QPointer>
#include <QVariantMap>

#include <vector>

class vdtTestCell;

// Makes the rows of the list of static vehicle tests (a member for each row, named by the row's number, with its
// "Name") and writes down how the driver marked them. UI thread.
class NVH_EXPORT vdtTableController : public TableController {
    Q_OBJECT
public:
    explicit vdtTableController(QVariantMap tests, QObject* parent = nullptr);

    // Notes the marks as they are now. They hold even when the table is gone.
    void rememberMarks();

    bool createsCells() const override { return true; }
    int itemHeight(TableView* table, const TableModelIndex& index) override;
    TableRenderer* rendererForIndex(TableView* table, const TableModelIndex& index) override;
    DisplayView* viewForParent(DisplayView* parent, const TableModelIndex& index) override;
    void itemSelected(TableView* table, const TableModelIndex& index) override;
    TableCell* createCellForItem(TableView* table, TableModelIndex const& index) override;

public slots:
    // Writes the marks to the file of the test results (cVdtStaticFilename), a JSON object with a member for each row:
    // {"0": {"Name": …, "Value": "FAIL", "PASS" or "NA"}, …}. A file that cannot be written is passed over.
    void collectVdtResults();

private:
    const QVariantMap mTests;
    std::vector<QPointer<vdtTestCell>> mCells;  // in order of creation; owned by the table
    QVariantMap mMarks;
};
