#pragma once

#include "nvh/Export.h"

#include <QObject>

class DataValue;
class DVControllable;

// Receives a data value's changes for a widget. UI thread.
class NVH_EXPORT DVConnection : public QObject {
    Q_OBJECT
public:
    // Owns neither; the widget holds this object. A null value never changes.
    DVConnection(DataValue* value, DVControllable& widget);

    DataValue* value() const { return mValue; }
    void connectValue();
    void disconnectValue();

public slots:
    void dvChanged();

private:
    DataValue* mValue;
    DVControllable& mWidget;
};
