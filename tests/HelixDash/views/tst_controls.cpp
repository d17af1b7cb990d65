#include "tests/HelixDash/views/Finger.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/ScrollableView.h>
#include <HelixDash/views/SlideSwitch.h>
#include <HelixDash/views/SpinnerView.h>
#include <HelixDash/views/VerticalSlideSwitch.h>

#include <QPointer>
#include <QSignalSpy>

#include <functional>
#include <memory>

namespace {

const QStringList kItems{"A", "B", "C", "D"};

}  // namespace

class TestControls : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { mScreen.reset(); }

    void buttonActs_data();
    void buttonActs();
    void toggleChangesBeforeItTells();
    void neighboursActWhereTheyAreSeen();
    void spinnerOnAButtonLetsTouchesThrough();
    void switchFollowsGestures_data();
    void switchFollowsGestures();
    void switchesCountFromBottomAndLeft();
    void sliderTellsOnlyWhatItIsAskedTo();
    void disablingReturnsADraggedThumb();
    void pickerChooses();
    void pickerClosesWhenTouchedElsewhere();
    void listClosesWithItsPicker();
    void survivesDeletionInAGesture_data();
    void survivesDeletionInAGesture();

private:
    std::unique_ptr<DisplayView> mScreen;
};

void TestControls::init() {
    mScreen = std::make_unique<DisplayView>();
    mScreen->resize(800, 700);
    mScreen->show(true);
    QVERIFY(QTest::qWaitForWindowExposed(mScreen.get()));
}

void TestControls::buttonActs_data() {
    QTest::addColumn<QString>("steps");
    QTest::addColumn<int>("times");
    QTest::newRow("tap") << "press lift" << 1;
    QTest::newRow("tap twice") << "press lift press lift" << 2;
    QTest::newRow("tap beside the frame") << "press-margin lift" << 1;
    QTest::newRow("slid off") << "press off lift-off" << 0;
    QTest::newRow("slid off and back") << "press off on lift" << 1;
    QTest::newRow("lifted only") << "lift" << 0;
    QTest::newRow("disabled") << "disable press lift" << 0;
    QTest::newRow("parent disabled") << "parent-disable press lift" << 0;
    QTest::newRow("hidden") << "hide press lift" << 0;
    QTest::newRow("disabled while pressed") << "press disable enable lift" << 0;
    QTest::newRow("parent disabled while pressed") << "press parent-disable parent-enable lift" << 0;
    QTest::newRow("hidden while pressed") << "press hide show lift" << 0;
    QTest::newRow("operated") << "touched released" << 1;
    QTest::newRow("operated out of sight") << "parent-hide touched released" << 1;
    QTest::newRow("released untouched") << "released" << 0;
    QTest::newRow("released twice") << "touched released released" << 1;
    QTest::newRow("operated while disabled") << "disable touched enable released" << 0;
    QTest::newRow("operated under a disabled parent") << "parent-disable touched released" << 0;
    QTest::newRow("operated while hidden") << "hide touched released" << 0;
    QTest::newRow("hidden in between, out of sight") << "parent-hide touched hide show released" << 0;
    QTest::newRow("operated during a touch") << "press touched released lift" << 1;
}

void TestControls::buttonActs() {
    auto* parent = new DisplayView(mScreen.get());
    parent->resize(600, 500);
    auto* button = new ButtonView("Start", parent);
    button->move(100, 100);
    QSignalSpy acted(button, &ControlBase::released);
    Finger finger(mScreen.get());
    const QHash<QString, std::function<void()>> actions{
        {"press", [&] { finger.press(button); }},
        {"press-margin",
         [&] {
             finger.press(button, {2, 30});
         }},
        {"on", [&] { finger.moveTo(button, Finger::middle(button)); }},
        {"off",
         [&] {
             finger.moveTo(button, {-40, -40});
         }},
        {"lift", [&] { finger.lift(button); }},
        {"lift-off",
         [&] {
             finger.lift(button, {-40, -40});
         }},
        {"touched", [&] { button->touched(); }},
        {"released", [&] { button->released(); }},
        {"show", [&] { button->show(true); }},
        {"hide", [&] { button->show(false); }},
        {"enable", [&] { button->setEnabled(true); }},
        {"disable", [&] { button->setEnabled(false); }},
        {"parent-hide", [&] { parent->show(false); }},
        {"parent-enable", [&] { parent->setEnabled(true); }},
        {"parent-disable", [&] { parent->setEnabled(false); }},
    };
    QFETCH(QString, steps);
    for (const QString& step : steps.split(' '))
        actions[step]();
    QTEST(int(acted.count()), "times");
    QVERIFY(!button->isPressed());
}

void TestControls::toggleChangesBeforeItTells() {
    auto* button = new ButtonView("Reversal On", mScreen.get());
    button->setToggle(true);
    QList<bool> seen;
    connect(button, &ControlBase::released, this, [&] { seen.append(button->isOn()); });
    button->touched(), button->released();
    button->touched(), button->released();
    QCOMPARE(seen, (QList<bool>{true, false}));
}

void TestControls::neighboursActWhereTheyAreSeen() {
    auto* left = new ButtonView("Upload", mScreen.get());
    left->resize(170, 70);
    auto* right = new ButtonView("Save", mScreen.get());
    right->resize(170, 70);
    right->move(150, 0);
    QSignalSpy leftActed(left, &ControlBase::released);
    QSignalSpy rightActed(right, &ControlBase::released);
    Finger finger(mScreen.get());
    finger.tap(mScreen.get(), {155, 35});
    QCOMPARE(leftActed.count(), 1);
    finger.tap(mScreen.get(), {165, 35});
    QCOMPARE(rightActed.count(), 1);
    left->setEnabled(false);
    finger.tap(mScreen.get(), {155, 35});
    QCOMPARE(leftActed.count(), 1);
}

void TestControls::spinnerOnAButtonLetsTouchesThrough() {
    auto* button = new ButtonView("Record", mScreen.get());
    auto* spinner = new SpinnerView(button, 3);
    spinner->move(100, 20);
    QSignalSpy acted(button, &ControlBase::released);
    Finger(mScreen.get()).tap(spinner);
    QCOMPARE(acted.count(), 1);
    const QImage before = spinner->grab().toImage();
    QTRY_VERIFY(spinner->grab().toImage() != before);
}

void TestControls::switchFollowsGestures_data() {
    QTest::addColumn<bool>("vertical");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("fingerDown");  // item under the finger
    QTest::addColumn<int>("fingerUp");
    QTest::addColumn<int>("beside");  // pixels across the track
    QTest::addColumn<int>("position");
    for (const bool vertical : {false, true}) {
        const char* way = vertical ? "vertical" : "sideways";
        QTest::addRow("%s tap", way) << vertical << 0 << 3 << 3 << 0 << 3;
        QTest::addRow("%s tap on the present one", way) << vertical << 2 << 2 << 2 << 0 << 2;
        QTest::addRow("%s drag", way) << vertical << 0 << 0 << 2 << 0 << 2;
        QTest::addRow("%s drag back", way) << vertical << 3 << 3 << 1 << 0 << 1;
        QTest::addRow("%s drag beyond the end", way) << vertical << 1 << 1 << 5 << 0 << 3;
        QTest::addRow("%s drag leaving the track", way) << vertical << 0 << 0 << 2 << 100 << 2;
        QTest::addRow("%s drag given up", way) << vertical << 0 << 0 << 2 << 300 << 0;
        QTest::addRow("%s finger between items", way) << vertical << 0 << 2 << 3 << 0 << 3;
        QTest::addRow("%s tap slid off", way) << vertical << 0 << 3 << 3 << 300 << 0;
    }
}

void TestControls::switchFollowsGestures() {
    QFETCH(bool, vertical);
    QFETCH(int, from);
    QFETCH(int, fingerDown);
    QFETCH(int, fingerUp);
    QFETCH(int, beside);
    QFETCH(int, position);
    SwitchControl* control = vertical ? static_cast<SwitchControl*>(new VerticalSlideSwitch(mScreen.get(), kItems))
                                      : new SlideSwitch(mScreen.get(), kItems);
    control->move(200, 300);
    control->setPosition(from);
    QSignalSpy changed(control, &SwitchControl::positionChanged);
    const QPoint down = control->itemPlace(fingerDown).center();
    const QPoint step = control->itemPlace(1).center() - control->itemPlace(0).center();
    const QPoint across = vertical ? QPoint(beside, 0) : QPoint(0, beside);
    Finger(mScreen.get()).drag(control, down, down + (fingerUp - fingerDown) * step + across);
    QCOMPARE(control->position(), position);
    QCOMPARE(int(changed.count()), position == from ? 0 : 1);
    if (position != from)
        QCOMPARE(changed.first().first().toInt(), position);
}

void TestControls::switchesCountFromBottomAndLeft() {
    VerticalSlideSwitch duration(mScreen.get(), {"60 Sec", "5 Sec", "Manual"});
    QCOMPARE(duration.labelAt(duration.position()), "Manual");
    QCOMPARE(duration.items(), (QStringList{"Manual", "5 Sec", "60 Sec"}));
    QCOMPARE(duration.itemPlace(2), QRect(0, 24, duration.width(), 56));
    QCOMPARE(duration.itemPlace(0).bottom() + 1, duration.height() - 24);
    SlideSwitch brake(mScreen.get(), {"OFF", "ON"});
    QCOMPARE(brake.labelAt(brake.position()), "OFF");
    QVERIFY(brake.itemPlace(0).left() < brake.itemPlace(1).left());
}

void TestControls::sliderTellsOnlyWhatItIsAskedTo() {
    SlideSwitch control(mScreen.get(), kItems);
    QSignalSpy moved(control.slider(), &Slider::valueChanged);
    control.slider()->setValue(9, false, false, false);
    control.setPosition(1);
    QCOMPARE(moved.count(), 0);
    control.slider()->setValue(9, false, true, false);
    control.slider()->setValue(3, false, true, false);
    control.slider()->setValue(qQNaN(), false, true, true);
    QCOMPARE(moved.count(), 1);
    QCOMPARE(control.position(), 3);
    control.slider()->setValue(3, false, true, true);
    QCOMPARE(moved.count(), 2);
}

void TestControls::disablingReturnsADraggedThumb() {
    auto* control = new SlideSwitch(mScreen.get(), kItems);
    QSignalSpy changed(control, &SwitchControl::positionChanged);
    const QImage atRest = control->grab().toImage();
    Finger finger(mScreen.get());
    finger.press(control, control->itemPlace(0).center());
    finger.moveTo(control, control->itemPlace(2).center());
    QVERIFY(control->grab().toImage() != atRest);
    control->setEnabled(false);
    control->setEnabled(true);
    finger.lift(control, control->itemPlace(2).center());
    QCOMPARE(control->grab().toImage(), atRest);
    QCOMPARE(changed.count(), 0);
}

void TestControls::pickerChooses() {
    auto* picker = new DropDownPicker(mScreen.get(), 220);
    picker->move(20, 20);
    picker->setChoices({"2.7kHz", "5.4kHz", "10.7kHz", "21.5kHz"});
    picker->setChoice(2);
    QSignalSpy changed(picker, &DropDownPicker::choiceChanged);
    Finger finger(mScreen.get());
    finger.tap(picker);
    QVERIFY(picker->isOpen());
    finger.tap(picker->list()->contentView()->childViews().at(3));
    QTRY_COMPARE(picker->choice(), 3);
    QVERIFY(!picker->isOpen());
    picker->setChoice(17);
    QCOMPARE(picker->choice(), 3);
    QCOMPARE(changed.count(), 1);
}

void TestControls::pickerClosesWhenTouchedElsewhere() {
    auto* picker = new DropDownPicker(mScreen.get(), 220);
    picker->setChoices(kItems);
    auto* beside = new ButtonView("Stop", mScreen.get());
    beside->move(400, 0);
    QSignalSpy acted(beside, &ControlBase::released);
    Finger finger(mScreen.get());
    finger.tap(picker);
    finger.tap(beside);
    QVERIFY(!picker->isOpen());
    QCOMPARE(acted.count(), 0);
    finger.tap(beside);
    QCOMPARE(acted.count(), 1);
}

void TestControls::listClosesWithItsPicker() {
    auto* parent = new DisplayView(mScreen.get());
    parent->resize(400, 400);
    auto* picker = new DropDownPicker(parent, 220);
    picker->setChoices(kItems);
    QPointer<ScrollableView> list;
    const auto open = [&] { picker->openList(), list = picker->list(); };
    open(), picker->setEnabled(false), picker->setEnabled(true);
    QTRY_VERIFY(!list);
    open(), parent->show(false), parent->show(true);
    QTRY_VERIFY(!list);
    open(), delete picker;
    QTRY_VERIFY(!list);
}

void TestControls::survivesDeletionInAGesture_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("bySlot");
    for (const char* kind : {"button", "switch", "picker"}) {
        QTest::addRow("%s while pressed", kind) << kind << false;
        QTest::addRow("%s by its own signal", kind) << kind << true;
    }
}

void TestControls::survivesDeletionInAGesture() {
    QFETCH(QString, kind);
    QFETCH(bool, bySlot);
    auto* behind = new ButtonView("behind", mScreen.get());
    behind->resize(400, 400);
    QSignalSpy behindActed(behind, &ControlBase::released);
    QPointer<ControlBase> control;
    if (kind == "button")
        control = new ButtonView("Start", mScreen.get());
    else if (kind == "switch")
        control = new SlideSwitch(mScreen.get(), kItems);
    else
        control = new DropDownPicker(mScreen.get(), 220);
    QPoint place(150, 30);
    if (auto* picker = qobject_cast<DropDownPicker*>(control)) {
        picker->setChoices(kItems);
        picker->openList();
        place = picker->list()->pos() + QPoint(50, 90);
    }
    if (bySlot)
        connect(control, &ControlBase::released, this, [&] { delete control; });
    Finger finger(mScreen.get());
    finger.press(mScreen.get(), place);
    if (!bySlot)
        delete control;
    finger.lift(mScreen.get(), place);
    QTRY_VERIFY(!control);
    QCOMPARE(behindActed.count(), 0);
    finger.tap(behind, {200, 350});
    QCOMPARE(behindActed.count(), 1);
}

QTEST_MAIN(TestControls)
#include "tst_controls.moc"
