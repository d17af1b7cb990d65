#pragma once

#include "nvh/Export.h"

#include <HelixDash/tables/TableCell.h>

class LabelView;
class SlideSwitch;

// One static vehicle test: its name, and the switch with which the driver marks it. UI thread.
class NVH_EXPORT vdtTestCell : public TableCell {
    Q_OBJECT
public:
    vdtTestCell(TableView* table, QString const& key, int row, QString name);

    int row() const { return mRow; }
    QString name() const;
    // "FAIL", "PASS" or "NA".
    QString mark() const;

    void populate() override;

private:
    const int mRow;
    LabelView* mNameLabel;
    SlideSwitch* mMarkSwitch = nullptr;
};
