#pragma once

// Makes the rows of a table and hears when one is touched.
//
// There are three ways to make a row. A controller whose createsCells() is true makes cells of its own class. Otherwise
// the table makes plain cells and fills each with the view that viewForParent() makes, or has it painted by the
// renderer that rendererForIndex() names. A row for which all of them give null stays empty.

#include <HelixDash/Export.h>
#include <HelixDash/tables/TableModel.h>

#include <QObject>

class DisplayView;
class QPainter;
class QRect;
class TableCell;
class TableView;

// Paints a row without a view of its own.
class HELIXDASH_EXPORT TableRenderer {
public:
    virtual ~TableRenderer();
    virtual void paint(QPainter* painter, const QRect& place, const TableModelIndex& index) = 0;
};

// A table does not own its controller. The controller must live as long as the table or until another one is set.
class HELIXDASH_EXPORT TableController : public QObject {
    Q_OBJECT

public:
    explicit TableController(QObject* parent = nullptr);

    virtual bool createsCells() const = 0;
    // Height of the row in pixels.
    virtual int itemHeight(TableView* table, const TableModelIndex& index) = 0;
    // Not owned by the table.
    virtual TableRenderer* rendererForIndex(TableView* table, const TableModelIndex& index) = 0;
    // A new view whose parent is the given one.
    virtual DisplayView* viewForParent(DisplayView* parent, const TableModelIndex& index) = 0;
    // A row has been touched, and the touch has not been for a control in it.
    virtual void itemSelected(TableView* table, const TableModelIndex& index) = 0;
    // A new cell, or one that dequeUnusedCell() of the table has given; the table owns it then.
    virtual TableCell* createCellForItem(TableView* table, const TableModelIndex& index) = 0;
};
