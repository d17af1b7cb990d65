#pragma once

#include <HelixDash/values/DataValue.h>

#include <QMap>

// The three types of data value. Reading value() while it is invalid gives what it held last, at first 0 or false.

// A whole number, 32 bit.
class HELIXDASH_EXPORT IntDataValue : public DataValue {
    Q_OBJECT
public:
    explicit IntDataValue(const QString& name) : DataValue(name) {}

    int value() const { return mValue; }
    // What the value was before its last change, and whether it was valid then.
    int previousValue() const { return mPrevious; }
    bool wasPreviousValid() const { return wasValid(); }

    void setValue(int value);
    void setProtectedValue(int value);
    bool accepts(const QVariant& value) const override;

protected:
    QString validText() const override;
    void stage(const QVariant& value) override;
    bool commitValue() override;
    void commitInvalid() override;

private:
    int mValue = 0;
    int mPrevious = 0;
    int mPendingValue = 0;
};

// A real number, in the unit its name implies (mph, Nm, 1/min, °C, bar).
class HELIXDASH_EXPORT RealDataValue : public DataValue {
    Q_OBJECT
public:
    explicit RealDataValue(const QString& name) : DataValue(name) {}

    double value() const { return mValue; }
    // NaN and infinities make the value invalid: no vehicle signal means them.
    void setValue(double value);
    void setProtectedValue(double value);
    bool accepts(const QVariant& value) const override;

signals:
    void realValueChanged(RealDataValue* value);

protected:
    QString validText() const override;
    void stage(const QVariant& value) override;
    bool commitValue() override;
    void announce() override;

private:
    double mValue = 0.0;
    double mPendingValue = 0.0;
};

class HELIXDASH_EXPORT BoolDataValue : public DataValue {
    Q_OBJECT
public:
    explicit BoolDataValue(const QString& name) : DataValue(name) {}

    bool value() const { return mValue; }
    void setValue(bool value);
    void setProtectedValue(bool value);
    bool accepts(const QVariant& value) const override;

protected:
    QString validText() const override;
    void stage(const QVariant& value) override;
    bool commitValue() override;

private:
    bool mValue = false;
    bool mPendingValue = false;
};

// The names of an integer value's states.
using EnumNameMap = QMap<int, QString>;

// The name of a state; its number in decimal if the map does not know it.
HELIXDASH_EXPORT QString NameForEnum(const EnumNameMap& names, int value);

// Names of VAPI_trim.
HELIXDASH_EXPORT extern const EnumNameMap TrimNameMap;
