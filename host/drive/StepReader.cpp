#include "host/drive/StepReader.h"

#include "host/values/ValueSetter.h"

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

std::vector<OrderedMember> StepReader::object(const char* name) {
    const OrderedMember* object = demand(name);
    if (!object)
        return {};
    if (!object->value.isObject()) {
        refuse(wanted(name, "an object of names and values"));
        return {};
    }
    const std::vector<OrderedMember> members = membersInOrder(object->source);
    if (members.empty())
        refuse(wanted(name, "at least one name with its value"));
    return members;
}

void StepReader::refuse(const char* name, const OrderedMember& member) {
    refuse(QStringLiteral("%1: \"%2\" cannot be %3")
               .arg(QLatin1String(name), member.name, QString::fromUtf8(member.source)));
}

NamedVariants StepReader::dataValues(const char* name) {
    NamedVariants values;
    for (const OrderedMember& member : object(name)) {
        const QJsonValue& value = member.value;
        QString reason;
        if (member.name.isEmpty() || !(value.isBool() || value.isDouble() || value.isNull()))
            refuse(name, member);
        else if (value.isDouble() && !ValueSetter::hasRoom(member.name, value.toDouble(), !member.isReal(), &reason))
            refuse(QLatin1String(name) + QStringLiteral(": ") + reason);
        values.emplace_back(member.name, value.isNull() ? QVariant() : toVariant(member));
    }
    return values;
}

NamedVariants StepReader::settings(const char* name) {
    NamedVariants settings;
    for (const OrderedMember& member : object(name)) {
        const QJsonValue& value = member.value;
        if (member.name.isEmpty() || !(value.isBool() || value.isDouble() || value.isString()))
            refuse(name, member);
        settings.emplace_back(member.name, toVariant(member));
    }
    return settings;
}

double StepReader::seconds(const char* name, double otherwise) {
    const OrderedMember* member = optional(name);
    if (!member)
        return otherwise;
    const double seconds = member->value.toDouble(-1.0);
    if (seconds < 0.0)
        refuse(wanted(name, "a number of seconds from 0"));
    if (seconds > kLongestSeconds)
        refuse(QStringLiteral("%1: %2 s are more than %3 s")
                   .arg(QLatin1String(name), QString::fromUtf8(member->source))
                   .arg(kLongestSeconds));
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
