#include "host/drive/StepReader.h"

#include <QJsonDocument>

#include <cmath>
#include <limits>

namespace {

bool isWhole(const QJsonValue& value) {
    return value.isDouble() && value.toDouble() == std::trunc(value.toDouble()) &&
           std::abs(value.toDouble()) <= std::numeric_limits<int>::max();
}

// Keeps what the text says of a number: 2 is whole, 2.0 is real.
QVariant toVariant(const OrderedMember& member) {
    return member.isReal() ? QVariant(member.value.toDouble()) : member.value.toVariant();
}

QString wanted(const char* name, const char* what) {
    return QStringLiteral("%1: %2 is wanted").arg(QLatin1String(name), QLatin1String(what));
}

}  // namespace

StepReader::StepReader(const QByteArray& line) : mMembers(membersInOrder(line)) {
    QStringList names;
    for (const OrderedMember& member : mMembers) {
        if (names.contains(member.name))
            refuse(QStringLiteral("the member \"%1\" is there twice").arg(member.name));
        names << member.name;
    }
}

void StepReader::refuse(const QString& reason) {
    if (ok())
        mFault = reason;
}

const OrderedMember* StepReader::find(const char* name) const {
    for (const OrderedMember& member : mMembers) {
        if (member.name == QLatin1String(name))
            return &member;
    }
    return nullptr;
}

const OrderedMember* StepReader::optional(const char* name) {
    mKnown << QString::fromLatin1(name);
    return find(name);
}

const OrderedMember* StepReader::demand(const char* name) {
    const OrderedMember* member = optional(name);
    if (!member)
        refuse(QStringLiteral("the member \"%1\" is missing").arg(QLatin1String(name)));
    return member;
}

bool StepReader::isNull(const char* name) {
    const OrderedMember* member = optional(name);
    return member && member->value.isNull();
}

QString StepReader::text(const char* name) {
    const OrderedMember* member = demand(name);
    if (!member)
        return {};
    if (member->value.toString().isEmpty())
        refuse(wanted(name, "a text that is not empty"));
    return member->value.toString();
}

int StepReader::wholeNumber(const char* name) {
    const OrderedMember* member = demand(name);
    if (!member)
        return 0;
    if (!isWhole(member->value) || member->value.toInt() < 0)
        refuse(wanted(name, "a whole number from 0"));
    return member->value.toInt();
}

ItemChoice StepReader::item(const char* name) {
    const OrderedMember* member = demand(name);
    if (!member)
        return 0;
    if (member->value.isString())
        return member->value.toString();
    if (!isWhole(member->value) || member->value.toInt() < 0)
        refuse(wanted(name, "the text of an item or its position from 0"));
    return member->value.toInt();
}

QVariant StepReader::valueOrNull(const char* name) {
    const OrderedMember* member = demand(name);
    if (!member || member->value.isNull())
        return {};
    if (!member->value.isBool() && !member->value.isDouble())
        refuse(wanted(name, "true, false, a number or null"));
    return member->value.isBool() ? QVariant(member->value.toBool()) : QVariant(member->value.toDouble());
}

NamedVariants StepReader::namedValues(const char* name, bool allowNull, bool allowText) {
    const OrderedMember* object = demand(name);
    NamedVariants values;
    if (!object)
        return values;
    if (!object->value.isObject()) {
        refuse(wanted(name, "an object of names and values"));
        return values;
    }
    for (const OrderedMember& member : membersInOrder(object->source)) {
        const QJsonValue& value = member.value;
        const bool fits =
            value.isBool() || value.isDouble() || (allowNull && value.isNull()) || (allowText && value.isString());
        if (!fits || member.name.isEmpty())
            refuse(QStringLiteral("%1: \"%2\" cannot be %3")
                       .arg(QLatin1String(name), member.name, QString::fromUtf8(member.source)));
        values.emplace_back(member.name, value.isNull() ? QVariant() : toVariant(member));
    }
    if (values.empty())
        refuse(wanted(name, "at least one name with its value"));
    return values;
}

double StepReader::seconds(const char* name, double otherwise) {
    const OrderedMember* member = optional(name);
    if (!member)
        return otherwise;
    const double seconds = member->value.toDouble(-1.0);
    if (seconds < 0.0)
        refuse(wanted(name, "a number of seconds from 0"));
    return seconds;
}

std::optional<bool> StepReader::truth(const char* name) {
    const OrderedMember* member = optional(name);
    if (!member)
        return std::nullopt;
    if (!member->value.isBool())
        refuse(wanted(name, "true or false"));
    return member->value.toBool();
}

std::optional<QString> StepReader::anyText(const char* name) {
    const OrderedMember* member = optional(name);
    if (!member)
        return std::nullopt;
    if (!member->value.isString())
        refuse(wanted(name, "a text"));
    return member->value.toString();
}

void StepReader::refuseUnknown(const QString& kind) {
    for (const OrderedMember& member : mMembers) {
        if (!mKnown.contains(member.name))
            refuse(QStringLiteral("there is no member \"%1\" in the step \"%2\"").arg(member.name, kind));
    }
}
