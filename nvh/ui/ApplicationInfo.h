#pragma once

struct AppInfo;

// What the host told about the application when it loaded it; null before that. Not owned. UI thread.
AppInfo* applicationInfo();
void setApplicationInfo(AppInfo* info);
