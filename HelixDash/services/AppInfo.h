#pragma once

#include <QString>

class DisplayView;

// What the host tells an application about itself when it loads it. The host owns the record and the view; both
// outlive the application's view.
struct AppInfo {
    QString name;                      // as the host shows it, for example "NVH"
    QString directory;                 // absolute path of the application's data files, without a trailing slash
    DisplayView* titleArea = nullptr;  // strip above the application for a title and controls of its own
};
