#include "host/console/Console.h"

#include "host/console/OtherValues.h"
#include "host/console/ValueControls.h"

#include <HelixDash/views/FontManager.h>

#include <QGroupBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kFontPx = 13;

constexpr RealRange kSpeed = {-25.0, 155.0, 0.0, 1};
constexpr RealRange kTorque = {-450.0, 650.0, 0.0, 1};
constexpr RealRange kRevolutions = {-2000.0, 18000.0, 0.0, 0};
constexpr RealRange kTemperature = {-40.0, 60.0, 20.0, 1};
constexpr RealRange kPressure = {0.0, 5.0, 2.9, 2};

ValueControl* real(const char* name, const QString& label, const QString& unit, const RealRange& range) {
    return new RealControl(QString::fromLatin1(name), label, unit, range);
}

ValueControl* push(const char* name, const QString& label) {
    return new PushControl(QString::fromLatin1(name), label);
}

}  // namespace

Console::Console() : mLayout(new QVBoxLayout(this)) {
    setFixedWidth(kWidth);
    setFont(FontManager::standardFont(kFontPx));
    const QString celsius = QStringLiteral("°C");
    const QString bar = QStringLiteral("bar");
    addAllValid();
    addGroup(tr("Drive"),
             {new ToggleControl(QStringLiteral("VAPI_brakePedal"), tr("Brake pedal"), tr("Released"), tr("Pressed")),
              real("VAPI_signedVehicleSpeed", tr("Speed"), QStringLiteral("mph"), kSpeed),
              real("VAPI_torqueCmd", tr("Torque"), QStringLiteral("Nm"), kTorque),
              real("VAPI_motorRPM", tr("Motor"), QStringLiteral("1/min"), kRevolutions),
              new NamedControl(QStringLiteral("VAPI_trim"), tr("Trim"), TrimNameMap)});
    addGroup(
        tr("Steering wheel, left"),
        {push("STW_leftTop", tr("Top button")), push("STW_leftMiddle", tr("Middle button")),
         push("STW_leftBottom", tr("Bottom button")), new WheelControl(QStringLiteral("STW_leftScroll"), tr("Wheel")),
         new NumberControl(QStringLiteral("GUI_steeringWheelControlsMode"), tr("Owner"))});
    addGroup(tr("Temperatures"), {real("HVAC_outsideTemp", tr("Outside"), celsius, kTemperature),
                                  real("HVAC_insideTemp", tr("Inside"), celsius, kTemperature)});
    addGroup(tr("Tyre pressures"), {real("TPMS_pressureFL", tr("Front left"), bar, kPressure),
                                    real("TPMS_pressureFR", tr("Front right"), bar, kPressure),
                                    real("TPMS_pressureRL", tr("Rear left"), bar, kPressure),
                                    real("TPMS_pressureRR", tr("Rear right"), bar, kPressure)});
    addOtherValues();
}

void Console::addGroup(const QString& title, const QList<ValueControl*>& controls) {
    auto* group = new QGroupBox(title);
    auto* layout = new QVBoxLayout(group);
    layout->setSpacing(4);
    for (ValueControl* control : controls)
        layout->addWidget(control);
    mLayout->addWidget(group);
    mControls += controls;
}

void Console::addAllValid() {
    auto* row = new QHBoxLayout;
    for (const bool valid : {true, false}) {
        auto* button = new QPushButton(valid ? tr("All valid") : tr("All invalid"));
        button->setObjectName(valid ? QStringLiteral("allValid") : QStringLiteral("allInvalid"));
        connect(button, &QPushButton::clicked, this, [this, valid] {
            for (ValueControl* control : mControls)
                control->setValid(valid);
        });
        row->addWidget(button);
    }
    mLayout->addLayout(row);
}

void Console::addOtherValues() {
    QStringList names;
    for (const ValueControl* control : mControls)
        names << control->objectName();
    auto* group = new QGroupBox(tr("Other values"));
    auto* layout = new QVBoxLayout(group);
    layout->addWidget(new OtherValues(names));
    mLayout->addWidget(group, 1);
}
