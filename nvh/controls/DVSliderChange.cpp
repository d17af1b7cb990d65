#include "nvh/controls/DVSliderChange.h"

#include <HelixDash/values/TypedDataValues.h>
#include <HelixDash/views/SwitchControl.h>

void handleDVChangeSliders(SwitchControl& widget, const IntDataValue& value) {
    qint64 steps = 0;
    {
        const DataValue::ConditionalLocker locker(&value);
        if (!value.isValid() || !value.wasPreviousValid())
            return;
        steps = qint64(value.previousValue()) - value.value();
    }
    const qint64 wanted = int(widget.slider()->value()) + steps;
    const qint64 last = widget.items().size() - 1;
    widget.slider()->setValue(double(qBound(qint64(0), wanted, last)), false, false, false);
}
