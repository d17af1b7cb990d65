#pragma once

#include "host/screen/Screen.h"

#include <HelixDash/services/AppInfo.h>

#include <QString>

// The recorder on a touchscreen that nobody drives but this program.
class RecorderScreen {
public:
    // False with a reason if the recorder cannot be loaded.
    bool load(const QString& plugin, const QString& appDirectory, QString* error);
    // Shows it and returns when it has been painted.
    void showFirstFrame();
    // Changes the application mode and returns when the new screen has been painted.
    void changeMode(int mode);

    // Calls a slot of the main view by its name.
    void call(const char* slot);
    // The text of a label, by its view name; empty if there is none.
    QString labelText(const char* name) const;
    // The rows of a table, by its view name; 0 if there is none.
    int rowCount(const char* name) const;
    // There is such a table, and all its rows are made.
    bool rowsAreReady(const char* name) const;

private:
    QObject* find(const char* className) const;

    Screen mScreen;
    AppInfo mInfo;
};
