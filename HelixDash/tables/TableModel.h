#pragma once

// What a table shows: how many sections with how many rows each. The rows' content is the controller's business.

#include <HelixDash/Export.h>

#include <QObject>
#include <QString>

struct TableModelIndex {
    int section = 0;
    int row = 0;  // in its section

    bool operator==(const TableModelIndex& other) const { return section == other.section && row == other.row; }
    bool operator!=(const TableModelIndex& other) const { return !(*this == other); }
};

// A table does not own its model and reads it only in setModel() and reload(); a count below 0 is taken as 0.
class HELIXDASH_EXPORT TableModel : public QObject {
    Q_OBJECT

public:
    explicit TableModel(QObject* parent = nullptr);

    virtual int sectionCount() const = 0;
    virtual int sectionItemCount(int section) const = 0;
    // Shown above the section's rows; an empty title takes no place.
    virtual QString sectionTitle(int section) const = 0;
};
