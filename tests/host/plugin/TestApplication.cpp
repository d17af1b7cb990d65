#include "tests/host/plugin/TestApplication.h"

#include <HelixDash/services/ConfigValue.h>
#include <HelixDash/services/Logger.h>
#include <HelixDash/values/DataValueManager.h>

#include <QTimer>

namespace {

template <typename View>
View* placed(View* view, const char* name, int left, int top) {
    view->setViewName(QString::fromLatin1(name));
    view->move(left, top);
    return view;
}

const QStringList kMarks = {QStringLiteral("FAIL"), QStringLiteral("PASS"), QStringLiteral("NA")};
const QStringList kChannels = {QStringLiteral("Right"), QStringLiteral("Left"), QStringLiteral("Sum (Avg.)")};

}  // namespace

TableCell* TestRows::createCellForItem(TableView* table, const TableModelIndex& index) {
    auto* cell = new TableCell(table, QStringLiteral("row"));
    auto* marks = placed(new SlideSwitch(cell->contentView(), kMarks), "mMark", 5, 10);
    connect(marks, &SlideSwitch::positionChanged, this, [this, table, index](int position) {
        Logger(this, "INFO") << table->viewName() << index.row << kMarks.at(position);
    });
    return cell;
}

TestApplication::TestApplication(DisplayView* parent, const AppInfo& info)
    : DisplayView(parent),
      mStatus(placed(new LabelView(QStringLiteral("Ready "), this), "mStatus", 500, 20)),
      mSignals(placed(new LabelView(this), "mSignals", 500, 60)) {
    setViewName(QStringLiteral("TestApplication"));
    resize(parent->width(), parent->height());
    placed(new LabelView(info.name, info.titleArea), "mTitle", 20, 10);
    addButtons();
    addSwitches();
    addPickers();
    addTables();
    for (const char* name : {"VAPI_motorRPM", "VAPI_trim", "VAPI_brakePedal"})
        dvConnect(DataValueManager::instance().find(QString::fromLatin1(name)), this, &TestApplication::signalChanged);
    Logger(this, "INFO") << "Loaded" << info.name << info.directory;
}

void TestApplication::addButtons() {
    mStart = placed(new ButtonView(QStringLiteral("Start"), this), "mStart", 20, 20);
    mStop = placed(new ButtonView(QStringLiteral("Stop"), this), "mStop", 20, 20);
    auto* later = placed(new ButtonView(QStringLiteral("Later"), this), "mLater", 20, 140);
    auto* disabled = placed(new ButtonView(QStringLiteral("Disabled"), this), "mDisabled", 240, 140);
    for (ButtonView* button : {mStart, mStop, later, disabled})
        button->resize(220, 100);
    mStop->show(false);
    mStop->setButtonColor(ButtonView::Recording);
    disabled->enable(false);
    connect(mStart, &ControlBase::released, this, &TestApplication::startTouched);
    connect(mStop, &ControlBase::released, this, &TestApplication::stopTouched);
    connect(later, &ControlBase::released, this, &TestApplication::laterTouched);
    connect(disabled, &ControlBase::released, this, [this] { say(QStringLiteral("never")); });
}

void TestApplication::addSwitches() {
    const QStringList onOff = {QStringLiteral("OFF"), QStringLiteral("ON")};
    placed(new SlideSwitch(this, onOff), "mSwitch", 20, 300);
    placed(new SlideSwitch(this, onOff), "mDisabledSwitch", 240, 300)->enable(false);
    placed(new SlideSwitch(this, onOff), "mHiddenSwitch", 240, 400)->show(false);
    placed(new VerticalSlideSwitch(this, {QStringLiteral("60 Sec"), QStringLiteral("10 Sec"), QStringLiteral("5 Sec"),
                                          QStringLiteral("Manual")}),
           "mDuration", 20, 400);
}

void TestApplication::addPickers() {
    for (const char* name : {"mPicker", "mDisabledPicker"}) {
        auto* picker = placed(new DropDownPicker(this, 300), name, 500, name[1] == 'P' ? 140 : 300);
        picker->setChoices(kChannels);
        picker->enable(name[1] == 'P');
        connect(picker, &DropDownPicker::choiceChanged, this, [this](int choice) { say(kChannels.at(choice)); });
    }
}

void TestApplication::addTables() {
    int left = 240;
    for (const char* name : {"mTable", "mDisabledTable"}) {
        auto* table = placed(new TableView(this), name, left, 480);
        table->setController(new TestRows(table));
        table->setModel(new TestModel(table));
        table->resize(450, 430);
        left += 500;
    }
    findChild<TableView*>(QStringLiteral("mDisabledTable"))->enable(false);
}

void TestApplication::say(const QString& text, const QString& colour) {
    mStatus->setText(text);
    mStatus->setSkinColor(colour);
}

void TestApplication::startTouched() {
    mStart->show(false);
    mStop->show(true);
    say(QStringLiteral("Recording"), QStringLiteral("battery/green"));
    Logger(this, "INFO") << "Recording started";
}

void TestApplication::stopTouched() {
    mStop->show(false);
    mStart->show(true);
    say(ConfigStringValue(QStringLiteral("test/Stopped"), QStringLiteral("Stopped")).value(),
        QStringLiteral("battery/red"));
    Logger(this, "ERROR") << "Recording stopped";
}

void TestApplication::laterTouched() {
    QTimer::singleShot(100, this, [this] {
        say(QStringLiteral("Later: 42 s"));
        placed(new LabelView(QStringLiteral("new"), this), "mNew", 900, 20);
        Logger(this, "INFO") << "Later";
    });
}

void TestApplication::signalChanged(DataValue* value) {
    const DataValue::StateLocker locker(value);
    mSignals->setText(mSignals->text() + value->name().mid(5) + QLatin1Char('=') + value->toString() +
                      QLatin1Char(' '));
}

extern "C" Q_DECL_EXPORT DisplayView* LoadPlugin(AppInfo* info, DisplayView* parent) {
    return new TestApplication(parent, *info);
}
