// Widgets that the vehicle works: bound buttons and switches, the brake-operated button, the steering wheel's controls.

#include "host/setup/HostServices.h"
#include "nvh/controls/BrakesAndDVControllableButton.h"
#include "nvh/controls/NVHModeHandler.h"
#include "nvh/controls/VertSlideSwitch.h"
#include "tests/support/PrivateMachine.h"
#include "tests/support/Rows.h"

#include <HelixDash/values/DataValueManager.h>

#include <QSignalSpy>
#include <QTest>

namespace {

using BoundButton = DVControllableWidget<BoolDataValue, ButtonView>;

template <typename DV>
DV* value(const char* name) {
    return DataValueManager::instance().find<DV>(QLatin1String(name));
}

// Sets a truth value to one state after the other: 't', 'f' or '-' for invalid.
void play(const char* name, const QByteArray& states) {
    for (const char state : states)
        setValue(name, state == '-' ? QVariant() : QVariant(state == 't'));
}

// Who is told what becomes of the controls, in order; a switch that lets go of the wheel as the screen's does.
struct WheelUser : STWControlsUser {
    void stwControlsAcquired() override {
        told += "acquired ";
        scrolled.enableDVControl();
    }
    void stwControlsYielded() override {
        told += "yielded ";
        scrolled.disableDVControl();
    }
    void stwControlsLost() override { told += "lost "; }

    QByteArray told;
    DVControllableWidget<IntDataValue, VertSlideSwitch> scrolled{value<IntDataValue>("STW_leftScroll"), nullptr,
                                                                 QStringList{"d", "c", "b", "a"}};
};

}  // namespace

class TestVehicleControls : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { HostServices::addNamedValues(); }

    void init() {
        for (DataValue* each : DataValueManager::instance().values())
            setValue(qPrintable(each->name()), QVariant());
    }

    void pressesBoundButton_data() {
        const auto row = columns<QByteArray, QByteArray, int>("before", "after", "actions");  // the button listens
        row("press and release", "f", "tf", 1);
        row("becomes invalid while pressed", "f", "t-", 1);
        row("held", "f", "t", 0);
        row("invalid to false", "-", "f", 0);
        row("pressed before it listened", "t", "f", 0);
        row("twice", {}, "tftf", 2);
    }

    void pressesBoundButton() {
        const auto [before, after] = cells<QByteArray, QByteArray>();
        BoundButton button(value<BoolDataValue>("STW_leftMiddle"), QString());
        QSignalSpy released(&button, &ControlBase::released);
        play("STW_leftMiddle", before);
        button.enableDVControl();
        button.enableDVControl();
        play("STW_leftMiddle", after);
        QTEST(int(released.count()), "actions");
    }

    void followsOnlyWhileShownEnabledAndControlled() {
        BoundButton button(value<BoolDataValue>("STW_leftTop"), QString());
        QSignalSpy released(&button, &ControlBase::released);
        const auto actsNow = [&released] {
            released.clear();
            play("STW_leftTop", "tf");
            return released.count() == 1;
        };
        QVERIFY(!actsNow());
        button.show(false);
        button.enableDVControl();
        QVERIFY(!actsNow());
        button.show(true);
        QVERIFY(actsNow());
        button.enable(false);
        QVERIFY(!actsNow());
        button.enable(true);
        QVERIFY(actsNow());
        button.disableDVControl();
        QVERIFY(!actsNow());
    }

    void releasesOnlyItsOwnPress() {
        BoundButton button(value<BoolDataValue>("STW_leftTop"), QString());
        button.enableDVControl();
        QSignalSpy released(&button, &ControlBase::released);
        play("STW_leftTop", "t");
        button.enable(false);
        button.enable(true);
        button.touched();  // by a finger
        play("STW_leftTop", "f");
        QCOMPARE(released.count(), 0);
        button.released();
        QCOMPARE(released.count(), 1);
    }

    void movesBoundSwitch_data() {
        const auto row = columns<int, QVariantList, int>("from", "counter", "to");
        row("a rise goes to the first label", 2, QVariantList{10, 11}, 1);
        row("a fall goes to the last", 1, QVariantList{10, 8}, 3);
        row("stays at the first", 1, QVariantList{0, 100}, 0);
        row("stays at the last", 1, QVariantList{0, INT_MIN}, 3);
        row("first value", 1, QVariantList{QVariant(), 5}, 1);
        row("lost and found again", 1, QVariantList{4, QVariant(), 5}, 1);
        row("whole range", 1, QVariantList{INT_MIN, INT_MAX}, 0);
    }

    void movesBoundSwitch() {
        auto [from, counter] = cells<int, QVariantList>();
        WheelUser user;
        user.scrolled.setPosition(from);
        QSignalSpy moved(&user.scrolled, &SwitchControl::positionChanged);
        setValue("STW_leftScroll", counter.takeFirst());
        user.scrolled.enableDVControl();
        for (const QVariant& to : counter)
            setValue("STW_leftScroll", to);
        QTEST(user.scrolled.position(), "to");
        QCOMPARE(moved.count(), 0);
    }

    void stopsByBrake_data() {
        const auto row = columns<QByteArray, QByteArray, int>("state", "pedal", "actions");
        row("pressed twice", "on", "ftft", 2);
        row("let go and lost", "on", "f-f", 0);
        for (const char* state : {"off", "ignored", "disabled"})
            row(state, QByteArray(state), "ft", 0);
    }

    void stopsByBrake() {
        const auto [state, pedal] = cells<QByteArray, QByteArray>();
        BrakesAndDVControllableButton button(nullptr, "Stop", nullptr);
        button.ignoreBrakesWhen([state] { return state == "ignored"; });
        for (int round = 0; round < 2; ++round) {
            button.enableBrakesControl();
            button.enable(false);
            button.enable(true);
        }
        if (state == "off")
            button.disableBrakesControl();
        button.enable(state != "disabled");
        QSignalSpy released(&button, &ControlBase::released);
        play("VAPI_brakePedal", pedal);
        QTEST(int(released.count()), "actions");
    }

    void takesAndGivesBackWheel() {
        WheelUser user;
        setValue("STW_leftScroll", 20);
        setValue("GUI_steeringWheelControlsMode", 2);
        auto handler = std::make_unique<NVHModeHandler>(user);
        QCOMPARE(value<IntDataValue>("GUI_steeringWheelControlsMode")->value(), 6);
        setValue("STW_leftScroll", 18);
        QCOMPARE(user.scrolled.position(), 2);
        handler.reset();
        QCOMPARE(user.told, QByteArray("acquired yielded "));
        QCOMPARE(value<IntDataValue>("GUI_steeringWheelControlsMode")->value(), 0);
        QCOMPARE(value<IntDataValue>("STW_leftScroll")->value(), 20);
        QCOMPARE(user.scrolled.position(), 2);
    }

    void leavesWheelThatIsTakenAlready() {
        WheelUser user;
        setValue("STW_leftScroll", 20);
        setValue("GUI_steeringWheelControlsMode", 6);
        {
            const NVHModeHandler handler(user);
            QCOMPARE(user.told, QByteArray());
            setValue("STW_leftScroll", 25);
        }
        QCOMPARE(user.told, QByteArray("yielded "));
        QCOMPARE(value<IntDataValue>("STW_leftScroll")->value(), 25);
    }

    void noticesLoss() {
        for (const QVariant& taken : {QVariant(3), QVariant(0), QVariant()}) {
            WheelUser user;
            NVHModeHandler handler(user);
            setValue("GUI_steeringWheelControlsMode", taken);
            QCOMPARE(user.told, QByteArray("acquired lost "));
            handler.yield();
            setValue("GUI_steeringWheelControlsMode", 6);
            QCOMPARE(user.told, QByteArray("acquired lost "));
            handler.yield();
            handler.acquire();
            QCOMPARE(user.told, QByteArray("acquired lost yielded acquired "));
        }
    }
};

QTEST_MAIN(TestVehicleControls)
#include "tst_vehiclecontrols.moc"
