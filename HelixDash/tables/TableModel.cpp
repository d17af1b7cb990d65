#include <HelixDash/tables/TableModel.h>

TableModel::TableModel(QObject* parent) : QObject(parent) {}
