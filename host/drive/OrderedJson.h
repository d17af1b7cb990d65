#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>

#include <vector>

// A member of a JSON object, with the text of its value: an object as Qt reads it has lost the order of its members, a
// second member of one name, and the difference between 2 and 2.0.
struct OrderedMember {
    QString name;
    QByteArray source;
    QJsonValue value;

    // A number written with a decimal point or an exponent.
    bool isReal() const { return value.isDouble() && (source.contains('.') || source.toLower().contains('e')); }
};

// The members of an object in the order of its text. The text has to be a valid JSON object.
std::vector<OrderedMember> membersInOrder(const QByteArray& object);
