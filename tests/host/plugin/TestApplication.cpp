#include <HelixDash/services/AppInfo.h>
#include <HelixDash/services/ConfigValue.h>
#include <HelixDash/services/Logger.h>
#include <HelixDash/tables/TableCell.h>
#include <HelixDash/tables/TableController.h>
#include <HelixDash/tables/TableView.h>
#include <HelixDash/values/DataValueManager.h>
#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/LabelView.h>
#include <HelixDash/views/SlideSwitch.h>

#include <QTimer>

namespace {

template <typename View>
View* placed(View* view, const char* name, int left, int top) {
    view->setViewName(QString::fromLatin1(name));
    view->move(left, top);
    return view;
}

}  // namespace

// A thousand rows with a switch each: more than a table makes at once.
class Thousand : public TableModel {
public:
    int sectionCount() const override { return 1; }
    int sectionItemCount(int) const override { return 1000; }
    QString sectionTitle(int) const override { return {}; }
};

class Rows : public TableController {
public:
    bool createsCells() const override { return false; }
    int itemHeight(TableView*, const TableModelIndex&) override { return 100; }
    TableRenderer* rendererForIndex(TableView*, const TableModelIndex&) override { return nullptr; }
    DisplayView* viewForParent(DisplayView* parent, const TableModelIndex& index) override {
        const QStringList items = {QStringLiteral("OFF"), QStringLiteral("ON")};
        return placed(new SlideSwitch(parent, items), qPrintable(QStringLiteral("mRow%1").arg(index.row)), 5, 20);
    }
    void itemSelected(TableView*, const TableModelIndex&) override {}
    TableCell* createCellForItem(TableView*, const TableModelIndex&) override { return nullptr; }
};

// An application with something for every step of a drive.
class TestApplication : public DisplayView {
    Q_OBJECT
public:
    TestApplication(DisplayView* parent, const AppInfo& info)
        : DisplayView(parent),
          mStatus(placed(new LabelView(QStringLiteral("Ready "), this), "mStatus", 500, 20)),
          mSignals(placed(new LabelView(this), "mSignals", 500, 60)) {
        setViewName(QStringLiteral("TestApplication"));
        resize(parent->width(), parent->height());
        mStart = addButton("mStart", 20, 20, &TestApplication::startTouched);
        mStop = addButton("mStop", 20, 20, &TestApplication::stopTouched);
        mStop->show(false);
        addButton("mLater", 20, 140, &TestApplication::laterTouched);
        addButton("mDisabled", 240, 140, &TestApplication::startTouched)->enable(false);
        addSwitches();
        for (const char* name : {"VAPI_motorRPM", "VAPI_trim", "VAPI_brakePedal"})
            dvConnect(DataValueManager::instance().find(QString::fromLatin1(name)), this,
                      &TestApplication::signalChanged);
        Logger(this, "INFO") << "Loaded" << info.name;
    }

private:
    ButtonView* addButton(const char* name, int left, int top, void (TestApplication::*touched)()) {
        auto* button = placed(new ButtonView(QString::fromLatin1(name), this), name, left, top);
        button->resize(220, 100);
        connect(button, &ControlBase::released, this, touched);
        return button;
    }
    void addSwitches() {
        const QStringList onOff = {QStringLiteral("OFF"), QStringLiteral("ON")};
        placed(new SlideSwitch(this, onOff), "mSwitch", 20, 300);
        placed(new SlideSwitch(this, onOff), "mDisabledSwitch", 240, 300)->enable(false);
        placed(new SlideSwitch(this, onOff), "mHiddenSwitch", 240, 400)->show(false);
        auto* picker = placed(new DropDownPicker(this, 300), "mPicker", 500, 140);
        picker->setChoices({QStringLiteral("Right"), QStringLiteral("Left"), QStringLiteral("Sum (Avg.)")});
        placed(new TableView(this), "mTable", 240, 480);
        auto* longTable = placed(new TableView(this), "mLongTable", 700, 480);
        longTable->setController(&mRows);
        longTable->setModel(&mThousand);
    }

    void say(const QString& text, const QString& colour) {
        mStatus->setText(text);
        mStatus->setSkinColor(colour);
    }
    void startTouched() {
        mStart->show(false);
        mStop->show(true);
        say(QStringLiteral("Recording"), QStringLiteral("battery/green"));
        Logger(this, "INFO") << "Recording started";
    }
    void stopTouched() {
        mStop->show(false);
        mStart->show(true);
        say(ConfigStringValue(QStringLiteral("test/Stopped"), {}).value(), QStringLiteral("battery/red"));
        Logger(this, "ERROR") << "Recording stopped";
    }
    // A tenth of a second later: the status changes and a new view comes.
    void laterTouched() {
        QTimer::singleShot(100, this, [this] {
            say(QStringLiteral("Later: 42 s"), QStringLiteral("black"));
            placed(new LabelView(QStringLiteral("new"), this), "mNew", 900, 20);
            Logger(this, "INFO") << "Later";
        });
    }
    void signalChanged(DataValue* value) {
        const DataValue::StateLocker locker(value);
        mSignals->setText(mSignals->text() + value->name().mid(5) + QLatin1Char('=') + value->toString() +
                          QLatin1Char(' '));
    }

    Thousand mThousand;
    Rows mRows;
    LabelView* mStatus;
    LabelView* mSignals;
    ButtonView* mStart;
    ButtonView* mStop;
};

extern "C" Q_DECL_EXPORT DisplayView* LoadPlugin(AppInfo* info, DisplayView* parent) {
    return new TestApplication(parent, *info);
}

#include "TestApplication.moc"
