#pragma once

#include "nvh/Export.h"

#include <HelixDash/tables/TableController.h>

#include <QPointer>
#include <QTimer>
#include <QVariantMap>

#include <vector>

class vsmTableCell;

// Makes the rows of the Vehicle Status Monitor from what the conditions' file says: a member for each row, named by
// the row's number, with "Name", "DataValues" and "OverrideDataValues". UI thread.
class NVH_EXPORT vsmTableController : public TableController {
    Q_OBJECT
public:
    // As the file says.
    explicit vsmTableController(QVariantMap conditions, QObject* parent = nullptr);

    // Evaluates every row again: whenever the screen is shown, and twice a second while a row waits for a data value
    // that does not exist yet.
    void updateVSMTable();
    // The driver's switch: the audio and the climate condition, which are the first two rows, show "AUTO" from now on,
    // or their status again. Does nothing with fewer than two rows.
    void toggleCellAutoControl(bool on);

    // What the table asks for. Rows are cells of this class's own, all of one height, and a touch on one does nothing.
    bool createsCells() const override { return true; }
    int itemHeight(TableView* table, const TableModelIndex& index) override;
    TableRenderer* rendererForIndex(TableView* table, const TableModelIndex& index) override;
    DisplayView* viewForParent(DisplayView* parent, const TableModelIndex& index) override;
    void itemSelected(TableView* table, const TableModelIndex& index) override;
    TableCell* createCellForItem(TableView* table, TableModelIndex const& index) override;

private:
    void lookForNewDataValues();

    const QVariantMap mConditions;
    std::vector<QPointer<vsmTableCell>> mCells;  // in order of creation; owned by the table
    QTimer mLookout;                             // runs while a row waits for a data value that does not exist yet
};
