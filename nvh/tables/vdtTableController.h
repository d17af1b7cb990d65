#pragma once

#include "nvh/Export.h"

#include <HelixDash/tables/TableController.h>

#include <QMap>
#include <QPointer>
#include <QVariantMap>

#include <vector>

class vdtTestCell;

// Makes the rows of the list of static vehicle tests and writes down how the driver marked them. UI thread; nothing
// blocks but for the file.
class NVH_EXPORT vdtTableController : public TableController {
    Q_OBJECT
public:
    // A member for each row, named by the row's number, with the "Name" of the test.
    explicit vdtTableController(QVariantMap tests, QObject* parent = nullptr);

    // Notes the marks as they are now, before the table goes: they hold until they are collected. A row that the table
    // has not made yet counts as untouched.
    void rememberMarks();

    // Why the last collectVdtResults() could not write the file, with its name; empty if it could.
    QString whyNoMarks() const { return mWhyNoMarks; }

    // What the table asks for. Rows are cells of this class's own, all of one height, and a touch on one does nothing.

    bool createsCells() const override { return true; }
    int itemHeight(TableView* table, const TableModelIndex& index) override;
    TableRenderer* rendererForIndex(TableView* table, const TableModelIndex& index) override;
    DisplayView* viewForParent(DisplayView* parent, const TableModelIndex& index) override;
    void itemSelected(TableView* table, const TableModelIndex& index) override;
    TableCell* createCellForItem(TableView* table, TableModelIndex const& index) override;

public slots:
    // Writes the marks to the file of the test results (cVdtStaticFilename), a JSON object with a member for each row:
    // {"0": {"Name": …, "Value": "FAIL", "PASS" or "NA"}, …}. Called by Save and Upload before the recording is packed.
    // Nothing but a plain file of this user is written to; whyNoMarks() tells of a failure.
    void collectVdtResults();

private:
    struct Mark {
        QString name;
        QString mark;
    };

    QString nameOf(int row) const;

    const QVariantMap mTests;
    std::vector<QPointer<vdtTestCell>> mCells;  // in order of creation; owned by the table
    QMap<int, Mark> mMarks;                     // by row, as they were when they were noted
    QString mWhyNoMarks;
};
