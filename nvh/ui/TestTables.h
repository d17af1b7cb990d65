#pragma once

#include "nvh/engine/Settings.h"

#include <QVariantMap>

class NVHAppView;
class Screen;
class TableView;
class vdtTableController;
class vsmTableController;

// The screen's two tables: the Vehicle Status Monitor, and the list of static vehicle tests once it is there. UI
// thread.
class TestTables {
public:
    // Both outlive this object; the view has the tables and their controllers for children.
    TestTables(NVHAppView& view, Screen& screen, AppMode mode);

    // Builds the Vehicle Status Monitor from the application's "nvh_vsm.json", a table without rows if it cannot be
    // read.
    void initVSMTable();
    // Builds the list of static tests (a member for each row) in place of the one before, and in the full recorder the
    // two buttons below it.
    void showVdtTests(const QVariantMap& tests);
    // Removes the list; the driver's marks in it hold until there is a new one, for he may save or upload before.
    void removeVdtTable();
    // True if there is a list that the driver does not see.
    bool isVdtTableHidden() const;

    // Null until the tables are built; the list's controller stays when its table goes.
    TableView* vsmTable() const { return mVsmTable; }
    vsmTableController* vsmController() const { return mVsmController; }
    vdtTableController* vdtController() const { return mVdtController; }

private:
    NVHAppView& mView;
    Screen& mScreen;
    const AppMode mMode;
    TableView* mVdtTable = nullptr;
    vdtTableController* mVdtController = nullptr;
    TableView* mVsmTable = nullptr;
    vsmTableController* mVsmController = nullptr;
};
