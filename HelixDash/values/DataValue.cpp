#include "HelixDash/values/DataValue.h"

#include <HelixDash/services/Logger.h>

#include <QPointer>
#include <QRecursiveMutex>
#include <QThread>

#include <functional>
#include <utility>
#include <vector>

namespace {

// One lock for all values: readers hold it for a few instructions, and with a single lock no order of taking two
// values can deadlock.
class ValueLock {
public:
    static void take() {
        mutex().lock();
        ++depth;
    }
    // The changes that were committed meanwhile are announced once this thread holds nothing any more: a slot that
    // waits for another thread must not keep that thread from reading a value.
    static void release() {
        --depth;
        mutex().unlock();
        if (depth > 0 || announcements.empty())
            return;
        for (const auto& announce : std::exchange(announcements, {}))
            announce();
    }
    static bool heldHere() { return depth > 0; }
    static void announceLater(std::function<void()> announce) { announcements.push_back(std::move(announce)); }

private:
    static QRecursiveMutex& mutex() {
        static QRecursiveMutex lock;
        return lock;
    }
    static thread_local int depth;
    static thread_local std::vector<std::function<void()>> announcements;
};

thread_local int ValueLock::depth = 0;
thread_local std::vector<std::function<void()>> ValueLock::announcements;

}  // namespace

const char* const DataValue::kInvalid = "Invalid";

DataValue::DataValue(const QString& name) {
    setObjectName(name);
}

DataValue::~DataValue() = default;

bool DataValue::beginWrite(bool asOwner) {
    if (mProtected && !asOwner)
        qFatal("Protected data value %s not set with setProtectedValue", qPrintable(objectName()));
    if (mEventLockers == 0) {
        Logger(this, "ERROR") << "Data value" << objectName() << "set without an event locker";
        return false;
    }
    mPending = true;
    mPendingValid = true;
    return true;
}

void DataValue::setInvalid() {
    if (beginWrite(true))
        mPendingValid = false;
}

bool DataValue::setVariant(const QVariant& value) {
    if (!value.isValid()) {
        setInvalid();
        return true;
    }
    if (!accepts(value))
        return false;
    stage(value);
    return true;
}

void DataValue::commit() {
    if (!mPending)
        return;
    mPending = false;
    const bool validBefore = std::exchange(mValid, mPendingValid);
    const bool valueChangedNow = mValid && commitValue();
    if (!mValid)
        commitInvalid();
    if (mValid == validBefore && !valueChangedNow)
        return;
    mWasValid = validBefore;
    ValueLock::announceLater([value = QPointer<DataValue>(this)] {
        if (!value)
            return;
        if (QThread::currentThread() == value->thread())
            value->announce();
        else
            QMetaObject::invokeMethod(
                value, [value] { value->announce(); }, Qt::QueuedConnection);
    });
}

void DataValue::announce() {
    emit valueChanged(this);
}

DataValue::EventLocker::EventLocker(DataValue* value) : mValue(value) {
    ValueLock::take();
    if (mValue)
        ++mValue->mEventLockers;
}

DataValue::EventLocker::~EventLocker() {
    if (mValue && --mValue->mEventLockers == 0)
        mValue->commit();
    ValueLock::release();
}

DataValue::StateLocker::StateLocker(const DataValue* value) {
    Q_UNUSED(value)
    ValueLock::take();
}

DataValue::StateLocker::~StateLocker() {
    ValueLock::release();
}

DataValue::ConditionalLocker::ConditionalLocker(const DataValue* value) : mLocked(!ValueLock::heldHere()) {
    Q_UNUSED(value)
    if (mLocked)
        ValueLock::take();
}

DataValue::ConditionalLocker::~ConditionalLocker() {
    if (mLocked)
        ValueLock::release();
}
