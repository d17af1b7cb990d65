#pragma once

// One row of a table.
//
//     class NameCell : public TableCell {
//     public:
//         NameCell(TableView* table, const QString& key, const QString& name) : TableCell(table, key),
//             mLabel(new LabelView(name, contentView())) {}
//         void populate() override { mLabel->resize(width() - 40, height()); mLabel->setLeft(20); }
//     …
//
// The cell's views go into contentView(), which is as large as the cell.

#include <HelixDash/tables/TableModel.h>
#include <HelixDash/views/DisplayView.h>

class TableRenderer;
class TableView;

class HELIXDASH_EXPORT TableCell : public DisplayView {
    Q_OBJECT

public:
    // The key says which cells can stand in for each other, see TableView::dequeUnusedCell().
    TableCell(TableView* table, const QString& key);

    QString key() const { return mKey; }
    TableView* table() const { return mTable; }
    TableModelIndex index() const { return mIndex; }
    DisplayView* contentView() const { return mContent; }

    // Lay the content out for width() and height(). Called when the cell has got its place in the table, and again
    // whenever its size has changed: a view that is made here must be made only once.
    virtual void populate();

protected:
    void touchLost() override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    friend class TableView;

    void place(const TableModelIndex& index, const QRect& where);

    TableView* const mTable;
    const QString mKey;
    TableModelIndex mIndex;
    DisplayView* mContent;
    TableRenderer* mRenderer = nullptr;
    bool mPlaced = false;
    bool mLast = false;  // no line below the last row
    bool mTouched = false;
    QPoint mTouchedAt;
};
