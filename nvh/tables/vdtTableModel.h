#pragma once

#include "nvh/Export.h"

#include <HelixDash/tables/TableModel.h>

// The list of static vehicle tests: one section without a title.
class NVH_EXPORT vdtTableModel : public TableModel {
    Q_OBJECT
public:
    // With that many rows for good.
    explicit vdtTableModel(int rowCount, QObject* parent = nullptr);

    // What the table asks for.
    int sectionCount() const override { return 1; }
    int sectionItemCount(int section) const override;
    QString sectionTitle(int section) const override;

private:
    const int mRowCount;
};
