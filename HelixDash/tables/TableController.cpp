#include <HelixDash/tables/TableController.h>

TableRenderer::~TableRenderer() = default;

TableController::TableController(QObject* parent) : QObject(parent) {}
