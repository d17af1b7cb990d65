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

    // What it was made with.
    DataValue* value() const { return mValue; }
    // Called by the widget, in turns.
    void connectValue();
    void disconnectValue();

public slots:
    // The value has changed: tells the widget.
    void dvChanged();

private:
    DataValue* mValue;
    DVControllable& mWidget;
};
