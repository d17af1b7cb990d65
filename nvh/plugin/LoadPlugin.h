#pragma once

#include "nvh/Export.h"

struct AppInfo;
class DisplayView;

// The library's entry: makes the application's view in the given parent and returns it to the host, which owns it from
// then on through the parent. The record must outlive the view. The library may be loaded before there is an
// application object; this may not be called before.
extern "C" NVH_EXPORT DisplayView* LoadPlugin(AppInfo* info, DisplayView* parent);
