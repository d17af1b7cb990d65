#pragma once

#include "host/console/ValueControl.h"

#include <HelixDash/values/TypedDataValues.h>

class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QSlider;
class QSpinBox;

// What a slider offers for a real value; a typed number may lie outside.
struct RealRange {
    double minimum;
    double maximum;
    double start;  // shown while the value has never been valid
    int decimals;
};

class RealControl : public ValueControl {
    Q_OBJECT
public:
    RealControl(const QString& valueName, const QString& label, const QString& unit, const RealRange& range);

protected:
    QVariant edited() const override;
    void showValue(const DataValue& value) override;

private:
    void show(double number);

    double mStep;
    QSlider* mSlider;
    QDoubleSpinBox* mNumber;
};

// A truth value that stays as it is put.
class ToggleControl : public ValueControl {
    Q_OBJECT
public:
    ToggleControl(const QString& valueName, const QString& label, const QString& off, const QString& on);

protected:
    QVariant edited() const override;
    void showValue(const DataValue& value) override;

private:
    QString mOff;
    QString mOn;
    QPushButton* mButton;
};

// A truth value that is true as long as the button is pressed.
class PushControl : public ValueControl {
    Q_OBJECT
public:
    PushControl(const QString& valueName, const QString& label);

protected:
    QVariant edited() const override { return false; }
    void showValue(const DataValue& value) override;

private:
    QPushButton* mButton;
};

// A counter that a wheel moves up and down.
class WheelControl : public ValueControl {
    Q_OBJECT
public:
    WheelControl(const QString& valueName, const QString& label);

protected:
    QVariant edited() const override { return mCount; }
    void showValue(const DataValue& value) override;

private:
    QPushButton* makeStep(const QString& text, int step);

    int mCount = 0;
    QLabel* mCountView;
};

// A whole number.
class NumberControl : public ValueControl {
    Q_OBJECT
public:
    NumberControl(const QString& valueName, const QString& label);

protected:
    QVariant edited() const override;
    void showValue(const DataValue& value) override;

private:
    QSpinBox* mNumber;
};

// A whole number whose states have names; one without a name is shown as a number.
class NamedControl : public ValueControl {
    Q_OBJECT
public:
    NamedControl(const QString& valueName, const QString& label, const EnumNameMap& names);

protected:
    QVariant edited() const override;
    void showValue(const DataValue& value) override;

private:
    QComboBox* mNames;
};
