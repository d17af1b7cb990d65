#include "nvh/controls/DVConnection.h"

#include "nvh/controls/DVControllable.h"

#include <HelixDash/values/DataValue.h>

DVConnection::DVConnection(DataValue* value, DVControllable& widget) : mValue(value), mWidget(widget) {}

void DVConnection::connectValue() {
    dvConnect(mValue, this, &DVConnection::dvChanged);
}

void DVConnection::disconnectValue() {
    dvDisconnect(mValue, this);
}

void DVConnection::dvChanged() {
    mWidget.handleDVChange();
}
