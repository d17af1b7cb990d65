#include "nvh/tables/vdtTableModel.h"

vdtTableModel::vdtTableModel(int rowCount, QObject* parent) : TableModel(parent), mRowCount(rowCount) {}

int vdtTableModel::sectionItemCount(int) const {
    return mRowCount;
}

QString vdtTableModel::sectionTitle(int) const {
    return {};
}
