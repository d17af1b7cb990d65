#include "nvh/ui/ApplicationInfo.h"

namespace {

AppInfo* theInfo = nullptr;

}  // namespace

AppInfo* applicationInfo() {
    return theInfo;
}

void setApplicationInfo(AppInfo* info) {
    theInfo = info;
}
