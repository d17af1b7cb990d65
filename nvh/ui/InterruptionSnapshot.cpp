#include "nvh/ui/InterruptionSnapshot.h"

#include <HelixDash/views/DisplayView.h>

void InterruptionSnapshot::save(const QList<DisplayView*>& views) {
    for (const DisplayView* view : views) {
        mSavedEnabled[view] = view->isEnabled();
        mSavedVisible[view] = view->isVisible();
    }
}

void InterruptionSnapshot::restore(DisplayView* view) const {
    view->enable(mSavedEnabled.value(view, false));
    view->show(mSavedVisible.value(view, false));
}

void InterruptionSnapshot::forget(const QObject* view) {
    mSavedEnabled.remove(view);
    mSavedVisible.remove(view);
}
