#pragma once

#include <HelixDash/services/AppInfo.h>
#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableController.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>
#include <HelixDash/views/VerticalSlideSwitch.h>

class DataValue;

// Rows with a switch each.
class TestRows : public TableController {
    Q_OBJECT
public:
    using TableController::TableController;

    bool createsCells() const override { return true; }
    int itemHeight(TableView*, const TableModelIndex&) override { return 100; }
    TableRenderer* rendererForIndex(TableView*, const TableModelIndex&) override { return nullptr; }
    DisplayView* viewForParent(DisplayView*, const TableModelIndex&) override { return nullptr; }
    void itemSelected(TableView*, const TableModelIndex&) override {}
    TableCell* createCellForItem(TableView* table, const TableModelIndex& index) override;
};

class TestModel : public TableModel {
    Q_OBJECT
public:
    using TableModel::TableModel;

    int sectionCount() const override { return 1; }
    int sectionItemCount(int) const override { return 20; }
    QString sectionTitle(int) const override { return {}; }
};

// An application with one of everything that a drive can touch.
class TestApplication : public DisplayView {
    Q_OBJECT
public:
    TestApplication(DisplayView* parent, const AppInfo& info);

private:
    void addButtons();
    void addSwitches();
    void addPickers();
    void addTables();
    void say(const QString& text, const QString& colour = QStringLiteral("black"));
    void startTouched();
    void stopTouched();
    // A tenth of a second later: the status changes and a new view comes.
    void laterTouched();
    void signalChanged(DataValue* value);

    LabelView* mStatus;
    LabelView* mSignals;
    ButtonView* mStart = nullptr;
    ButtonView* mStop = nullptr;
};
