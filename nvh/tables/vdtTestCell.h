#pragma once

#include "nvh/Export.h"

#include <HelixDash/tables/TableCell.h>

class LabelView;
class SlideSwitch;

// One static vehicle test: its name, and the switch with which the driver marks it. UI thread.
class NVH_EXPORT vdtTestCell : public TableCell {
    Q_OBJECT
public:
    // Made by the table's controller, from the list.
    vdtTestCell(TableView* table, QString const& key, int row, QString name);

    // What it was made with.
    int row() const { return mRow; }
    QString name() const;
    // "FAIL", "PASS" or "NA": what the driver has chosen, or the mark of a switch that nobody has touched.
    QString mark() const;
    static QString untouchedMark();

    // Makes the switch, and lays both out for the cell's size.
    void populate() override;

private:
    const int mRow;
    LabelView* mNameLabel;
    SlideSwitch* mMarkSwitch = nullptr;
};
