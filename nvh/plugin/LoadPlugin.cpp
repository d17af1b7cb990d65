#include "nvh/plugin/LoadPlugin.h"

#include "nvh/plugin/NVHWrapper.h"
#include "nvh/ui/ApplicationInfo.h"

DisplayView* LoadPlugin(AppInfo* info, DisplayView* parent) {
    setApplicationInfo(info);
    return new NVHWrapper(parent, info);
}
