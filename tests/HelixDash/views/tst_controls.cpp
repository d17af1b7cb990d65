#include "tests/HelixDash/views/TouchScreen.h"
#include "tests/support/Rows.h"

#include <HelixDash/views/ButtonView.h>
#include <HelixDash/views/DropDownPicker.h>
#include <HelixDash/views/ScrollableView.h>
#include <HelixDash/views/SlideSwitch.h>
#include <HelixDash/views/VerticalSlideSwitch.h>

#include <QPointer>
#include <QSignalSpy>

#include <functional>
#include <memory>

static const QStringList kItems{"A", "B", "C", "D"};

class TestControls : public QObject {
    Q_OBJECT

private slots:
    void init() {
        mScreen = std::make_unique<TouchScreen>(800, 700);
        QVERIFY(mScreen->appears());
    }
    void cleanup() { mScreen.reset(); }

    void buttonActs_data() {
        const auto row = columns<QString, int>("steps", "times");
        row("tap", "press lift", 1);
        row("slid off", "press off lift-off", 0);
        row("slid off and back", "press off on lift", 1);
        row("disabled", "disable press lift", 0);
        row("parent disabled", "parent-disable press lift", 0);
        row("hidden", "hide press lift", 0);
        row("disabled while pressed", "press disable enable lift", 0);
        row("hidden while pressed", "press hide show lift", 0);
        row("operated out of sight", "parent-hide touched released", 1);
        row("released untouched", "released", 0);
        row("released twice", "touched released released", 1);
        row("operated while disabled", "disable touched enable released", 0);
        row("operated under a disabled parent", "parent-disable touched released", 0);
        row("operated while hidden", "hide touched released", 0);
        row("hidden in between, out of sight", "parent-hide touched hide show released", 0);
        row("operated during a touch", "press touched released lift", 1);
    }

    void buttonActs() {
        auto* parent = new DisplayView(mScreen.get());
        parent->resize(600, 500);
        auto* button = new ButtonView("Start", parent);
        button->move(100, 100);
        QSignalSpy acted(button, &ControlBase::released);
        const QPoint kOff(-40, -40);
        const QHash<QString, std::function<void()>> actions{
            {"press", [&] { mScreen->press(button); }},
            {"on", [&] { mScreen->moveTo(button, TouchScreen::middle(button)); }},
            {"off", [&] { mScreen->moveTo(button, kOff); }},
            {"lift", [&] { mScreen->lift(button); }},
            {"lift-off", [&] { mScreen->lift(button, kOff); }},
            {"touched", [&] { button->touched(); }},
            {"released", [&] { button->released(); }},
            {"show", [&] { button->show(true); }},
            {"hide", [&] { button->show(false); }},
            {"enable", [&] { button->setEnabled(true); }},
            {"disable", [&] { button->setEnabled(false); }},
            {"parent-hide", [&] { parent->show(false); }},
            {"parent-disable", [&] { parent->setEnabled(false); }},
        };
        QFETCH(QString, steps);
        for (const QString& step : steps.split(' '))
            actions[step]();
        QTEST(int(acted.count()), "times");
        QVERIFY(!button->isPressed());
    }

    void neighboursActWhereTheyAreSeen() {
        auto* left = new ButtonView("Upload", mScreen.get());
        left->resize(170, 70);
        auto* right = new ButtonView("Save", mScreen.get());
        right->resize(170, 70);
        right->move(150, 0);
        QSignalSpy leftActed(left, &ControlBase::released);
        QSignalSpy rightActed(right, &ControlBase::released);
        mScreen->tap(mScreen.get(), {155, 35});
        QCOMPARE(leftActed.count(), 1);
        mScreen->tap(mScreen.get(), {165, 35});
        QCOMPARE(rightActed.count(), 1);
    }

    void switchFollowsGestures_data() {
        columns<bool, int, int, int, int, int>("vertical", "from", "fingerDown", "fingerUp", "beside", "position");
        for (const bool vertical : {false, true}) {
            const char* way = vertical ? "vertical" : "sideways";
            QTest::addRow("%s tap", way) << vertical << 0 << 3 << 3 << 0 << 3;
            QTest::addRow("%s tap on the present one", way) << vertical << 2 << 2 << 2 << 0 << 2;
            QTest::addRow("%s drag", way) << vertical << 0 << 0 << 2 << 0 << 2;
            QTest::addRow("%s drag beyond the end", way) << vertical << 1 << 1 << 5 << 0 << 3;
            QTest::addRow("%s drag leaving the track", way) << vertical << 0 << 0 << 2 << 100 << 2;
            QTest::addRow("%s drag given up", way) << vertical << 0 << 0 << 2 << 300 << 0;
            QTest::addRow("%s finger between items", way) << vertical << 0 << 2 << 3 << 0 << 3;
            QTest::addRow("%s tap slid off", way) << vertical << 0 << 3 << 3 << 300 << 0;
        }
    }

    void switchFollowsGestures() {
        const auto [vertical, from, fingerDown, fingerUp, beside] = cells<bool, int, int, int, int>();
        SwitchControl* control = vertical ? static_cast<SwitchControl*>(new VerticalSlideSwitch(mScreen.get(), kItems))
                                          : new SlideSwitch(mScreen.get(), kItems);
        control->move(200, 300);
        control->setPosition(from);
        QSignalSpy changed(control, &SwitchControl::positionChanged);
        const QPoint down = control->itemPlace(fingerDown).center();
        const QPoint step = control->itemPlace(1).center() - control->itemPlace(0).center();
        const QPoint across = vertical ? QPoint(beside, 0) : QPoint(0, beside);
        mScreen->drag(control, down, down + (fingerUp - fingerDown) * step + across);
        QTEST(control->position(), "position");
        QCOMPARE(int(changed.count()), control->position() == from ? 0 : 1);
        if (!changed.isEmpty())
            QTEST(changed.first().first().toInt(), "position");
    }

    void disablingReturnsADraggedThumb() {
        auto* control = new SlideSwitch(mScreen.get(), kItems);
        QSignalSpy changed(control, &SwitchControl::positionChanged);
        const QImage atRest = control->grab().toImage();
        mScreen->press(control, control->itemPlace(0).center());
        mScreen->moveTo(control, control->itemPlace(2).center());
        QVERIFY(control->grab().toImage() != atRest);
        control->setEnabled(false);
        control->setEnabled(true);
        mScreen->lift(control, control->itemPlace(2).center());
        QCOMPARE(control->grab().toImage(), atRest);
        QCOMPARE(changed.count(), 0);
    }

    void pickerChoosesAndClosesWhenTouchedElsewhere() {
        auto* picker = new DropDownPicker(mScreen.get(), 220);
        picker->move(20, 20);
        picker->setChoices({"2.7kHz", "5.4kHz", "10.7kHz", "21.5kHz"});
        picker->setChoice(2);
        QSignalSpy changed(picker, &DropDownPicker::choiceChanged);
        mScreen->tap(picker);
        QVERIFY(picker->isOpen());
        mScreen->tap(picker->list()->contentView()->childViews().at(3));
        QTRY_COMPARE(picker->choice(), 3);
        QVERIFY(!picker->isOpen());
        picker->setChoice(17);
        QCOMPARE(picker->choice(), 3);
        QCOMPARE(changed.count(), 1);

        auto* beside = new ButtonView("Stop", mScreen.get());
        beside->move(400, 0);
        QSignalSpy acted(beside, &ControlBase::released);
        mScreen->tap(picker);
        mScreen->tap(beside);
        QVERIFY(!picker->isOpen());
        QCOMPARE(acted.count(), 0);
        mScreen->tap(beside);
        QCOMPARE(acted.count(), 1);
    }

    void listClosesWithItsPicker() {
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

    void survivesDeletionInAGesture_data() {
        columns<QString, bool>("kind", "bySlot");
        for (const char* kind : {"button", "switch", "picker"}) {
            QTest::addRow("%s while pressed", kind) << kind << false;
            QTest::addRow("%s by its own signal", kind) << kind << true;
        }
    }

    void survivesDeletionInAGesture() {
        const auto [kind, bySlot] = cells<QString, bool>();
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
        mScreen->press(mScreen.get(), place);
        if (!bySlot)
            delete control;
        mScreen->lift(mScreen.get(), place);
        QTRY_VERIFY(!control);
        QCOMPARE(behindActed.count(), 0);
        mScreen->tap(behind, {200, 350});
        QCOMPARE(behindActed.count(), 1);
    }

private:
    std::unique_ptr<TouchScreen> mScreen;
};

QTEST_MAIN(TestControls)
#include "tst_controls.moc"
