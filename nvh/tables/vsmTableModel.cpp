#include "nvh/tables/vsmTableModel.h"

vsmTableModel::vsmTableModel(int rowCount, QObject* parent) : TableModel(parent), mRowCount(rowCount) {}

int vsmTableModel::sectionItemCount(int) const {
    return mRowCount;
}

QString vsmTableModel::sectionTitle(int) const {
    return {};
}
