#pragma once

#include <HelixDash/values/DataValueManager.h>

#include <QVariant>

// The one way in which the host sets a data value, whoever asks: an option, a drive, a trace or the console. A name
// that does not exist yet gets a value with the type of what is set. UI thread.
namespace ValueSetter {

using Type = DataValueManager::Type;

// "a truth value", "a whole number", "a real number": for messages.
QString typeName(Type type);
Type typeOf(const DataValue& value);
// A real value takes whole numbers too; otherwise the types have to be the same.
bool canHold(Type value, Type given);

// Whether a number finds room in the value of that name, as it is now: a whole value has 32 bit, and a number written
// as a whole one makes a whole value where there is none yet. A real value has room for all of them. False with a
// reason; whether the types are the same is set()'s business.
bool hasRoom(const QString& name, double number, bool writtenWhole, QString* error);

// Sets the value of that name from a bool, a whole number or a real; an invalid variant makes it invalid. The change
// signals have been delivered on return. False with a reason, changing nothing, if the value is of another type, if a
// whole number finds no room, or if an invalid variant leaves open which type a new value should have.
bool set(const QString& name, const QVariant& value, QString* error);

// Finds the value or makes one, and makes it invalid; false with a reason if it is of another type.
bool setInvalid(const QString& name, Type type, QString* error);

}  // namespace ValueSetter
