#include "host/console/Console.h"
#include "host/setup/HostServices.h"
#include "host/values/ValueSetter.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

// Works the console's widgets as a person does.
class TestConsole : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { HostServices::addNamedValues(); }

    void init() {
        mConsole = std::make_unique<Console>();
        mConsole->show();
        QTest::mouseClick(mConsole->findChild<QPushButton*>(QStringLiteral("allInvalid")), Qt::LeftButton);
    }

    void everyValueCanBeMadeValidAndInvalid() {
        const std::pair<QString, std::vector<const char*>> values[] = {
            {"false", {"VAPI_brakePedal", "STW_leftTop", "STW_leftMiddle", "STW_leftBottom"}},
            {"0.0", {"VAPI_signedVehicleSpeed", "VAPI_torqueCmd", "VAPI_motorRPM"}},
            {"0", {"STW_leftScroll", "GUI_steeringWheelControlsMode"}},
            {"20.0", {"HVAC_outsideTemp", "HVAC_insideTemp"}},
            {"2.9", {"TPMS_pressureFL", "TPMS_pressureFR", "TPMS_pressureRL", "TPMS_pressureRR"}},
        };
        for (const auto& [valid, names] : values) {
            for (const char* name : names) {
                QVERIFY2(text(name) == QStringLiteral("Invalid"), name);
                auto* box = part<QCheckBox>(name);
                QVERIFY2(!box->isChecked(), name);
                box->click();
                QVERIFY2(text(name) == valid, name);
                box->click();
                QVERIFY2(text(name) == QStringLiteral("Invalid"), name);
            }
        }
    }

    void playsTheCar() {
        QTest::mouseClick(part<QPushButton>("VAPI_brakePedal"), Qt::LeftButton);
        QCOMPARE(text("VAPI_brakePedal"), QStringLiteral("true"));
        QVERIFY(part<QCheckBox>("VAPI_brakePedal")->isChecked());

        auto* speed = part<QDoubleSpinBox>("VAPI_signedVehicleSpeed");
        speed->selectAll();
        QTest::keyClicks(speed, QStringLiteral("31.5\r"));
        QCOMPARE(text("VAPI_signedVehicleSpeed"), QStringLiteral("31.5"));
        part<QSlider>("VAPI_motorRPM")->setValue(4200);
        QCOMPARE(text("VAPI_motorRPM"), QStringLiteral("4200.0"));
        QCOMPARE(part<QDoubleSpinBox>("VAPI_motorRPM")->value(), 4200.0);

        auto* button = part<QPushButton>("STW_leftTop");
        QTest::mousePress(button, Qt::LeftButton);
        QCOMPARE(text("STW_leftTop"), QStringLiteral("true"));
        QTest::mouseRelease(button, Qt::LeftButton);
        QCOMPARE(text("STW_leftTop"), QStringLiteral("false"));

        part<QPushButton>("STW_leftScroll", QStringLiteral("Up"))->click();
        part<QPushButton>("STW_leftScroll", QStringLiteral("Up"))->click();
        part<QPushButton>("STW_leftScroll", QStringLiteral("Down"))->click();
        QCOMPARE(text("STW_leftScroll"), QStringLiteral("1"));
        part<QSpinBox>("GUI_steeringWheelControlsMode")->setValue(3);
        QCOMPARE(text("GUI_steeringWheelControlsMode"), QStringLiteral("3"));
    }

    void followsWhatOthersSet() {
        QVERIFY(ValueSetter::set(QStringLiteral("VAPI_motorRPM"), 25000.0, nullptr));
        QCOMPARE(part<QDoubleSpinBox>("VAPI_motorRPM")->value(), 25000.0);
        QVERIFY(part<QCheckBox>("VAPI_motorRPM")->isChecked());
        // What the control cannot show must not come back as another value.
        QCOMPARE(text("VAPI_motorRPM"), QStringLiteral("25000.0"));
        QVERIFY(ValueSetter::set(QStringLiteral("VAPI_brakePedal"), true, nullptr));
        QCOMPARE(part<QPushButton>("VAPI_brakePedal")->text(), QStringLiteral("Pressed"));
        QVERIFY(ValueSetter::set(QStringLiteral("VAPI_brakePedal"), {}, nullptr));
        QVERIFY(!part<QCheckBox>("VAPI_brakePedal")->isChecked());
        QVERIFY(ValueSetter::set(QStringLiteral("VAPI_trim"), 4, nullptr));
        QCOMPARE(part<QComboBox>("VAPI_trim")->currentText(), QStringLiteral("Performance"));
        QVERIFY(ValueSetter::set(QStringLiteral("VAPI_trim"), 9, nullptr));
        QCOMPARE(part<QComboBox>("VAPI_trim")->currentText(), QStringLiteral("9"));
    }

    void setsAndShowsOtherValues() {
        auto* line = mConsole->findChild<QLineEdit*>(QStringLiteral("setValue"));
        auto* list = mConsole->findChild<QTreeWidget*>();
        const auto shown = [list](const QString& name) {
            const auto items = list->findItems(name, Qt::MatchExactly);
            return items.isEmpty() ? QString() : items.first()->text(1);
        };
        QTest::keyClicks(line, QStringLiteral("CLIMATE_power=true\r"));
        QCOMPARE(shown(QStringLiteral("CLIMATE_power")), QStringLiteral("true"));
        QVERIFY(line->text().isEmpty());
        QTest::keyClicks(line, QStringLiteral("CLIMATE_power=7\r"));
        QCOMPARE(text("CLIMATE_power"), QStringLiteral("true"));
        QVERIFY(!line->text().isEmpty());
        QVERIFY(ValueSetter::set(QStringLiteral("DOORS_open"), 2, nullptr));
        QTRY_COMPARE(shown(QStringLiteral("DOORS_open")), QStringLiteral("2"));
        QVERIFY(shown(QStringLiteral("VAPI_motorRPM")).isEmpty());
    }

private:
    static QString text(const char* name) {
        return DataValueManager::instance().find(QString::fromLatin1(name))->toString();
    }
    template <typename Widget>
    Widget* part(const char* value, const QString& label = {}) const {
        for (Widget* widget : mConsole->findChild<QWidget*>(QString::fromLatin1(value))->findChildren<Widget*>()) {
            if (label.isEmpty() || widget->property("text").toString() == label)
                return widget;
        }
        return nullptr;
    }

    std::unique_ptr<Console> mConsole;
};

QTEST_MAIN(TestConsole)
#include "tst_console.moc"
