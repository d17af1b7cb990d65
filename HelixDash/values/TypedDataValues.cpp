#include "HelixDash/values/TypedDataValues.h"

#include <QLocale>

#include <cmath>
#include <limits>
#include <utility>

namespace {

bool isWholeNumber(const QVariant& value) {
    if (value.userType() == QMetaType::Bool)
        return false;
    if (value.userType() == QMetaType::Double) {
        const double number = value.toDouble();
        return number == std::trunc(number) && std::abs(number) <= 2147483647.0;
    }
    bool ok = false;
    const qlonglong number = value.toLongLong(&ok);
    return ok && number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
}

}  // namespace

void IntDataValue::setValue(int value) {
    if (beginWrite(false))
        mPendingValue = value;
}

void IntDataValue::setProtectedValue(int value) {
    if (beginWrite(true))
        mPendingValue = value;
}

bool IntDataValue::accepts(const QVariant& value) const {
    return !value.isValid() || isWholeNumber(value);
}

QString IntDataValue::validText() const {
    return QString::number(mValue);
}

void IntDataValue::stage(const QVariant& value) {
    setValue(value.toInt());
}

bool IntDataValue::commitValue() {
    if (mPendingValue == mValue)
        return false;
    mPrevious = std::exchange(mValue, mPendingValue);
    return true;
}

void IntDataValue::commitInvalid() {
    mPrevious = mValue;
}

void RealDataValue::setValue(double value) {
    if (!std::isfinite(value))
        setInvalid();
    else if (beginWrite(false))
        mPendingValue = value;
}

void RealDataValue::setProtectedValue(double value) {
    if (!std::isfinite(value))
        setInvalid();
    else if (beginWrite(true))
        mPendingValue = value;
}

bool RealDataValue::accepts(const QVariant& value) const {
    if (!value.isValid())
        return true;
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok && std::isfinite(number) && value.userType() != QMetaType::Bool;
}

QString RealDataValue::validText() const {
    QString text = QString::number(mValue, 'g', QLocale::FloatingPointShortest);
    if (!text.contains(QLatin1Char('.'))) {
        const int exponent = int(text.indexOf(QLatin1Char('e')));
        text.insert(exponent < 0 ? int(text.size()) : exponent, QStringLiteral(".0"));
    }
    return text;
}

void RealDataValue::stage(const QVariant& value) {
    setValue(value.toDouble());
}

bool RealDataValue::commitValue() {
    return std::exchange(mValue, mPendingValue) != mValue;
}

void RealDataValue::announce() {
    DataValue::announce();
    emit realValueChanged(this);
}

void BoolDataValue::setValue(bool value) {
    if (beginWrite(false))
        mPendingValue = value;
}

void BoolDataValue::setProtectedValue(bool value) {
    if (beginWrite(true))
        mPendingValue = value;
}

bool BoolDataValue::accepts(const QVariant& value) const {
    return !value.isValid() || value.userType() == QMetaType::Bool;
}

QString BoolDataValue::validText() const {
    return mValue ? QStringLiteral("true") : QStringLiteral("false");
}

void BoolDataValue::stage(const QVariant& value) {
    setValue(value.toBool());
}

bool BoolDataValue::commitValue() {
    return std::exchange(mValue, mPendingValue) != mValue;
}

QString NameForEnum(const EnumNameMap& names, int value) {
    return names.value(value, QString::number(value));
}

const EnumNameMap TrimNameMap = {
    {0, QStringLiteral("Base")},     {1, QStringLiteral("Base+")},       {2, QStringLiteral("Premium")},
    {3, QStringLiteral("Premium+")}, {4, QStringLiteral("Performance")},
};
