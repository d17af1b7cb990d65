#pragma once

#include <QMap>

class DisplayView;
class QObject;

// Which views are enabled and visible, as it was when the picture was taken. Views that were made later are taken for
// disabled and hidden. UI thread.
class InterruptionSnapshot {
public:
    // Takes the picture of these views; what it says of others stays.
    void save(const QList<DisplayView*>& views);
    // Gives the view its flags back.
    void restore(DisplayView* view) const;
    // For a view that goes: one that is made later may get its address and must not get its state.
    void forget(const QObject* view);

private:
    QMap<const QObject*, bool> mSavedEnabled;
    QMap<const QObject*, bool> mSavedVisible;
};
