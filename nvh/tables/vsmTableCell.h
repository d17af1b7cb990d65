#pragma once

#include "nvh/Export.h"

#include <HelixDash/tables/TableCell.h>

#include <QMap>
#include <QVariant>

class LabelView;

// One condition of the Vehicle Status Monitor: its name, and whether the vehicle meets it now.
//
// The condition is a set of data values, each with the text it has to have. The status is "OK" if all have it, "NOT OK"
// if one has another, "INVALID" if one is not valid or unknown (what comes first by name decides), and "AUTO" under
// automatic control. Where the condition is not met and there is an override, the override's status counts.
//
// The status follows its data values; one that the vehicle brings only later is followed from the next update on. UI
// thread.
class NVH_EXPORT vsmTableCell : public TableCell {
    Q_OBJECT
public:
    // Made by the table's controller, from the conditions' file; evaluated at once.
    vsmTableCell(TableView* table, QString const& key, int row, QString name, QMap<QString, QVariant> dataValues,
                 QMap<QString, QVariant> overrideDataValues);

    // The status of such a set of data values by itself.
    QString checkDataValues(QMap<QString, QVariant> dataValues);

    // Shows it at the next update.
    void setAutoControl(bool on) { mAutoControl = on; }
    // What it was made with.
    int row() const { return mRow; }
    // False while the vehicle does not have one of the data values.
    bool knowsAllDataValues() const { return mFollowsAll; }

    // Lays both labels out for the cell's size.
    void populate() override;

public slots:
    // Evaluates the condition and shows the status: on every change of its data values, and by the controller.
    void updateVSMTableCell();

private:
    QString status();
    // False if one of them does not exist.
    bool follow(const QMap<QString, QVariant>& dataValues);

    LabelView* mNameLabel;
    LabelView* mStatusLabel;
    bool mAutoControl = false;
    bool mFollowsAll = false;
    const QMap<QString, QVariant> mDataValues;
    const QMap<QString, QVariant> mOverrideDataValues;
    const int mRow;
};
