#pragma once

#include <QString>

struct AppInfo;
class DisplayView;

// Loads an application: a shared library that exports, with unmangled name,
//
//     extern "C" DisplayView* LoadPlugin(AppInfo* info, DisplayView* parent);
//
// and returns the application's view, which belongs to the parent. The library stays loaded until the process ends,
// since nobody can know what of its code is still to be called. UI thread.
namespace PluginLoader {

// Null, and a reason that names the library, if it cannot be loaded, has no such entry, or gives no view.
DisplayView* load(const QString& path, AppInfo& info, DisplayView& parent, QString* error);

// What the host calls the application: "NVH" for "lib/libNVH.so.1".
QString applicationName(const QString& path);

}  // namespace PluginLoader
