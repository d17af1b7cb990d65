#include "host/console/ValueControls.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>

#include <cmath>
#include <limits>

namespace {

constexpr int kNumberWidth = 90;
constexpr int kCountWidth = 40;

QWidget* sideBySide(const QList<QWidget*>& widgets) {
    auto* all = new QWidget;
    auto* layout = new QHBoxLayout(all);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    return all;
}

int numberOf(const DataValue& value) {
    return static_cast<const IntDataValue&>(value).value();
}

bool truthOf(const DataValue& value) {
    return static_cast<const BoolDataValue&>(value).value();
}

}  // namespace

RealControl::RealControl(const QString& valueName, const QString& label, const QString& unit, const RealRange& range)
    : ValueControl(valueName, label, unit),
      mStep(std::pow(10.0, -range.decimals)),
      mSlider(new QSlider(Qt::Horizontal)),
      mNumber(new QDoubleSpinBox) {
    mSlider->setRange(int(std::lround(range.minimum / mStep)), int(std::lround(range.maximum / mStep)));
    mSlider->setPageStep(qMax(1, (mSlider->maximum() - mSlider->minimum()) / 20));
    mNumber->setRange(-1e9, 1e9);
    mNumber->setDecimals(range.decimals);
    mNumber->setSingleStep(mSlider->pageStep() * mStep);
    mNumber->setKeyboardTracking(false);
    mNumber->setFixedWidth(kNumberWidth);
    show(range.start);
    connect(mSlider, &QSlider::valueChanged, this, [this](int steps) { setValue(steps * mStep); });
    connect(mNumber, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this](double number) { setValue(number); });
    setEditor(sideBySide({mSlider, mNumber}));
}

QVariant RealControl::edited() const {
    return mNumber->value();
}

void RealControl::showValue(const DataValue& value) {
    show(static_cast<const RealDataValue&>(value).value());
}

void RealControl::show(double number) {
    const QSignalBlocker sliderBlocker(mSlider);
    const QSignalBlocker numberBlocker(mNumber);
    mSlider->setValue(int(std::lround(qBound(double(mSlider->minimum()), number / mStep, double(mSlider->maximum())))));
    mNumber->setValue(number);
}

ToggleControl::ToggleControl(const QString& valueName, const QString& label, const QString& off, const QString& on)
    : ValueControl(valueName, label), mOff(off), mOn(on), mButton(new QPushButton(off)) {
    mButton->setCheckable(true);
    connect(mButton, &QPushButton::clicked, this, [this](bool checked) { setValue(checked); });
    setEditor(mButton);
}

QVariant ToggleControl::edited() const {
    return mButton->isChecked();
}

void ToggleControl::showValue(const DataValue& value) {
    mButton->setChecked(truthOf(value));
    mButton->setText(truthOf(value) ? mOn : mOff);
}

PushControl::PushControl(const QString& valueName, const QString& label)
    : ValueControl(valueName, label), mButton(new QPushButton(tr("Press"))) {
    connect(mButton, &QPushButton::pressed, this, [this] { setValue(true); });
    connect(mButton, &QPushButton::released, this, [this] { setValue(false); });
    setEditor(mButton);
}

void PushControl::showValue(const DataValue& value) {
    mButton->setDown(truthOf(value));
}

WheelControl::WheelControl(const QString& valueName, const QString& label)
    : ValueControl(valueName, label), mCountView(new QLabel(QString::number(mCount))) {
    mCountView->setAlignment(Qt::AlignCenter);
    mCountView->setFixedWidth(kCountWidth);
    setEditor(sideBySide({makeStep(tr("Down"), -1), mCountView, makeStep(tr("Up"), 1)}));
}

QPushButton* WheelControl::makeStep(const QString& text, int step) {
    auto* button = new QPushButton(text);
    button->setAutoRepeat(true);
    connect(button, &QPushButton::clicked, this, [this, step] { setValue(mCount + step); });
    return button;
}

void WheelControl::showValue(const DataValue& value) {
    mCount = numberOf(value);
    mCountView->setNum(mCount);
}

NumberControl::NumberControl(const QString& valueName, const QString& label)
    : ValueControl(valueName, label), mNumber(new QSpinBox) {
    mNumber->setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    mNumber->setKeyboardTracking(false);
    connect(mNumber, QOverload<int>::of(&QSpinBox::valueChanged), this, [this](int number) { setValue(number); });
    setEditor(mNumber);
}

QVariant NumberControl::edited() const {
    return mNumber->value();
}

void NumberControl::showValue(const DataValue& value) {
    const QSignalBlocker blocker(mNumber);
    mNumber->setValue(numberOf(value));
}

NamedControl::NamedControl(const QString& valueName, const QString& label, const EnumNameMap& names)
    : ValueControl(valueName, label), mNames(new QComboBox) {
    for (auto name = names.cbegin(); name != names.cend(); ++name)
        mNames->addItem(name.value(), name.key());
    connect(mNames, QOverload<int>::of(&QComboBox::activated), this, [this] { setValue(edited()); });
    setEditor(mNames);
}

QVariant NamedControl::edited() const {
    return mNames->currentData();
}

void NamedControl::showValue(const DataValue& value) {
    const int number = numberOf(value);
    if (mNames->findData(number) < 0)
        mNames->addItem(QString::number(number), number);
    mNames->setCurrentIndex(mNames->findData(number));
}
