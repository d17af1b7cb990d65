#include "host/values/ValueSetter.h"

#include <limits>
#include <optional>

namespace {

// Of a whole number that a double holds exactly.
constexpr int kAllDigits = 17;

bool refuse(QString* error, const QString& reason) {
    if (error)
        *error = reason;
    return false;
}

std::optional<ValueSetter::Type> typeToMake(const QVariant& value) {
    switch (value.userType()) {
        case QMetaType::Bool:
            return ValueSetter::Type::Bool;
        case QMetaType::Int:
        case QMetaType::LongLong:
            return ValueSetter::Type::Int;
        case QMetaType::Double:
            return ValueSetter::Type::Real;
        default:
            return std::nullopt;
    }
}

QString said(const QVariant& value) {
    return value.userType() == QMetaType::QString ? QLatin1Char('"') + value.toString() + QLatin1Char('"')
                                                  : value.toString();
}

}  // namespace

QString ValueSetter::typeName(Type type) {
    switch (type) {
        case Type::Bool:
            return QStringLiteral("a truth value");
        case Type::Int:
            return QStringLiteral("a whole number");
        case Type::Real:
            break;
    }
    return QStringLiteral("a real number");
}

ValueSetter::Type ValueSetter::typeOf(const DataValue& value) {
    if (qobject_cast<const BoolDataValue*>(&value))
        return Type::Bool;
    return qobject_cast<const IntDataValue*>(&value) ? Type::Int : Type::Real;
}

bool ValueSetter::canHold(Type value, Type given) {
    return value == given || (value == Type::Real && given == Type::Int);
}

bool ValueSetter::hasRoom(const QString& name, double number, bool writtenWhole, QString* error) {
    const DataValue* target = DataValueManager::instance().find(name);
    const bool isWhole = target ? typeOf(*target) == Type::Int : writtenWhole;
    if (!isWhole || (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max()))
        return true;
    return refuse(error, QStringLiteral("%1 is a whole number of 32 bit and cannot be %2")
                             .arg(name, QString::number(number, 'g', kAllDigits)));
}

bool ValueSetter::set(const QString& name, const QVariant& value, QString* error) {
    const bool isWhole = value.userType() == QMetaType::Int || value.userType() == QMetaType::LongLong;
    if (isWhole && !hasRoom(name, value.toDouble(), true, error))
        return false;
    DataValue* target = DataValueManager::instance().find(name);
    if (!target) {
        const std::optional<Type> type = typeToMake(value);
        if (!type)
            return refuse(error, value.isValid()
                                     ? QStringLiteral("%1 cannot be %2").arg(name, said(value))
                                     : QStringLiteral("there is no data value %1 to make invalid").arg(name));
        target = DataValueManager::instance().add(name, *type);
    }
    if (!target->accepts(value))
        return refuse(error,
                      QStringLiteral("%1 is %2 and cannot be %3").arg(name, typeName(typeOf(*target)), said(value)));
    const DataValue::EventLocker locker(target);
    return target->setVariant(value);
}

bool ValueSetter::setInvalid(const QString& name, Type type, QString* error) {
    DataValue* target = DataValueManager::instance().add(name, type);
    if (!target)
        return refuse(error, QStringLiteral("%1 is not %2").arg(name, typeName(type)));
    const DataValue::EventLocker locker(target);
    target->setInvalid();
    return true;
}
