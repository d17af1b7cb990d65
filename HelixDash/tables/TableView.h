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

#include <HelixDash/tables/TableModel.h>
#include <HelixDash/views/ScrollableView.h>

#include <QList>
#include <QPointer>

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

    // Makes all rows anew. While it runs the cells of before are unused ones to be asked for; those that nobody asked
    // for are deleted at its end.
    void reload();
    // A cell of that key that reload() has put aside, now the caller's to return from createCellForItem(); else null.
    TableCell* dequeUnusedCell(const QString& key);

    int rowCount() const { return int(mCells.size()); }
    // Null where there is no such row.
    TableCell* cellAt(int row) const;
    // Scrolls at once, as little as possible, so that the row is in the part of the table that can be seen.
    void scrollToRow(int row);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void clear();
    void makeRows();
    TableCell* makeCell(const TableModelIndex& index);
    void layOut();

    QPointer<TableController> mController;
    QPointer<TableModel> mModel;
    QList<TableCell*> mCells;
    QList<TableModelIndex> mIndexes;
    QList<TableCell*> mUnused;
    QList<QPair<int, DisplayView*>> mTitles;  // number of the first row below, title
};
