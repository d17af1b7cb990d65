#pragma once

#include <HelixDash/Export.h>

#include <QObject>
#include <QString>
#include <QVariant>

// One named vehicle signal: a value of a fixed type with a validity flag.
//
//     RealDataValue* speed = DataValueManager::instance().find<RealDataValue>("VAPI_signedVehicleSpeed");
//     {
//         DataValue::EventLocker locker(speed);
//         speed->setValue(31.5);
//     }                       // committed here, valueChanged() goes out once
//
// A value changes only while an EventLocker holds it. What is set there is pending until the outermost locker of that
// value goes; then it is committed at once, and the change signals go out once if validity or value really changed.
// They are emitted on the thread that owns the value: queued if the locker went on another thread, else as soon as that
// thread holds no locker any more, so a slot never runs under the lock.
//
// Reading is allowed from any thread while a StateLocker or ConditionalLocker is held. All values share one recursive
// lock: taking it twice on one thread, for one value or several, never deadlocks.
class HELIXDASH_EXPORT DataValue : public QObject {
    Q_OBJECT
public:
    class EventLocker;
    class StateLocker;
    class ConditionalLocker;

    // The text of a value that is not valid.
    static const char* const kInvalid;

    ~DataValue() override;

    QString name() const { return objectName(); }

    // Any thread, under a locker. Committed state only: what is pending is not seen here.
    bool isValid() const { return mValid; }

    // "1.0", "42", "true", or kInvalid. Reals are in the shortest form that reads back, always with a decimal point.
    // Any thread, under a locker.
    QString toString() const { return mValid ? validText() : QString::fromLatin1(kInvalid); }

    // Under an EventLocker: the value becomes invalid. The typed value keeps what it held last.
    void setInvalid();

    // Takes a value of this type, or text or a number that says one; an invalid variant makes the value invalid.
    // Under an EventLocker. False, changing nothing, if the variant does not fit.
    bool setVariant(const QVariant& value);
    // What setVariant() would answer; any thread, no locker needed.
    virtual bool accepts(const QVariant& value) const = 0;

    // A protected value is written by its owner only, with the typed class's setProtectedValue().
    bool isProtected() const { return mProtected; }
    void setProtected(bool on) { mProtected = on; }

signals:
    void valueChanged(DataValue* value);

protected:
    explicit DataValue(const QString& name);

    virtual QString validText() const = 0;
    // Takes an accepted variant as the pending value.
    virtual void stage(const QVariant& value) = 0;
    // Pending becomes current; true if the value differs from what it was. Called for a valid value only.
    virtual bool commitValue() = 0;
    // The value has become invalid.
    virtual void commitInvalid() {}
    // Emits the change signals, on the thread that owns the value.
    virtual void announce();

    // For the typed setters: checks the locker and the protection, marks the value as pending and valid.
    bool beginWrite(bool asOwner);
    bool wasValid() const { return mWasValid; }

private:
    void commit();

    int mEventLockers = 0;
    bool mValid = false;
    bool mWasValid = false;
    bool mPending = false;
    bool mPendingValid = false;
    bool mProtected = false;
};

// Holds the lock for writing one value; commits when the outermost one of that value goes. A null value is allowed
// and does nothing.
class HELIXDASH_EXPORT DataValue::EventLocker {
public:
    explicit EventLocker(DataValue* value);
    ~EventLocker();
    Q_DISABLE_COPY(EventLocker)

private:
    DataValue* mValue;
};

// Holds the lock for reading.
class HELIXDASH_EXPORT DataValue::StateLocker {
public:
    explicit StateLocker(const DataValue* value);
    ~StateLocker();
    Q_DISABLE_COPY(StateLocker)
};

// The same, at no cost where the thread holds the lock already.
class HELIXDASH_EXPORT DataValue::ConditionalLocker {
public:
    explicit ConditionalLocker(const DataValue* value);
    ~ConditionalLocker();
    Q_DISABLE_COPY(ConditionalLocker)

private:
    bool mLocked;
};

// Ties a value's change to a receiver's slot (with or without the DataValue* argument); nothing happens for a null
// value.
template <typename Receiver, typename Slot>
QMetaObject::Connection dvConnect(DataValue* value, Receiver* receiver, Slot slot,
                                  Qt::ConnectionType type = Qt::AutoConnection) {
    return value ? QObject::connect(value, &DataValue::valueChanged, receiver, slot, type) : QMetaObject::Connection();
}

// Unties every connection from the value to the receiver. False if there was none.
inline bool dvDisconnect(DataValue* value, QObject* receiver) {
    return value && QObject::disconnect(value, nullptr, receiver, nullptr);
}
