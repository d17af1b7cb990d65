#pragma once

#include "nvh/plugin/NVHWrapper.h"

#include <QString>

#include <memory>

class LabelView;

// The recorder on a touchscreen, loaded as a host does it, and a finger on it.
class AppScreen {
public:
    explicit AppScreen(int mode = AppModeNvh, const QString& directory = QStringLiteral(NVH_SOURCE_DIR "/nvh/app"));

    NVHWrapper& wrapper() { return *mWrapper; }
    NVHAppView& app() { return *mWrapper->appView(); }
    DisplayView& titleArea() { return *mTitleArea; }
    NvhPackageManager& packages() { return app().engine().packageManager(); }

    // The view of that object name; null if there is none.
    template <typename View = DisplayView>
    View* view(const char* name) const {
        return mScreen.findChild<View*>(QLatin1String(name));
    }
    // Of a label or button; the items of a switch with commas between, by position.
    QString text(const char* name) const;
    // "Waiting black 445": text, colour and x of the status label.
    QString status() const;
    bool takesTouch(const char* name) const;

    void choose(AppMode mode);
    void touch(const char* name);
    void setSwitch(const char* name, const QString& item);

private:
    DisplayView mScreen;
    DisplayView* mTitleArea;
    AppInfo mInfo;
    NVHWrapper* mWrapper;
};
