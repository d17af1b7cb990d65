#pragma once

// A list of rows that scrolls.
//
//     mTable = new TableView(this);
//     mTable->setController(controller);
//     mTable->setModel(model);            // makes the cells
//     mTable->resize(450, 425);           // lays them out again
//
// The cells of all rows are made when the model is set (or the controller, whichever comes last) and stay until the
// next reload: what the user marked in a row does not depend on how far he scrolled. Rows are numbered through all
// sections.
//
// What takes longer than a few milliseconds is done in later turns of the event loop, so that a long list never stops
// the screen: some tens of rows are there when setModel() returns, thousands follow from the top down. The table is as
// high as all its rows from the start. A new width lays the rows out again in the same way, and deleteLater() takes a
// long list away so: out of sight and nameless at once, its cells by and by. Deleting the table itself, or setting
// another model or controller, deletes the cells of before at once, which takes some 7 ms for 1000 rows.

#include <HelixDash/tables/TableModel.h>
#include <HelixDash/views/ScrollableView.h>

#include <QList>
#include <QPointer>
#include <QTimer>

class TableCell;
class TableController;

class HELIXDASH_EXPORT TableView : public ScrollableView {
    Q_OBJECT

public:
    explicit TableView(DisplayView* parent = nullptr);
    ~TableView() override;

    TableController* controller() const;
    TableModel* model() const;
    void setController(TableController* controller);
    void setModel(TableModel* model);

    // Makes all rows anew, a long list in later turns too. Until the last one is made the cells of before are unused
    // ones to be asked for; those that nobody asked for are deleted then.
    void reload();
    // A cell of that key that reload() has put aside, now the caller's to return from createCellForItem(); else null.
    TableCell* dequeUnusedCell(const QString& key);

    // Of the model as it was when it was set or reloaded, whether their cells are made yet or not.
    int rowCount() const { return int(mRows.size()); }
    // The rows from the top that have their cells in place; rowCount() when nothing is left to do.
    int readyRows() const { return mReady; }
    // Null where there is no such row, or where its cell is still to be made.
    TableCell* cellAt(int row) const;
    // Scrolls at once, as little as possible, so that the row is in the part of the table that can be seen; the place
    // of a row is there before its cell.
    void scrollToRow(int row);

protected:
    int contentHeight() const override { return mHeight; }
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Row {
        TableModelIndex index;
        int top = 0;
        int height = 0;
    };

    void clear();
    void readModel();
    TableCell* makeCell(const TableModelIndex& index);
    void layOut();
    // Makes and places rows for some milliseconds; the rest follows in later turns.
    void goOn();
    void makeRow(int number);
    // Deletes cells for some milliseconds, the last ones first.
    static void deleteSome(QList<TableCell*>& cells);
    // Deletes cells, and this table with the last one.
    void vanish();

    QPointer<TableController> mController;
    QPointer<TableModel> mModel;
    QList<Row> mRows;
    QList<TableCell*> mCells;                 // of the first rows
    int mReady = 0;                           // cells that are placed for the present width
    int mHeight = 0;                          // of all rows and titles
    QList<TableCell*> mUnused;                // put aside by reload() until all rows are made
    QList<QPair<int, DisplayView*>> mTitles;  // number of the first row below, title
    QTimer mRest;
};
