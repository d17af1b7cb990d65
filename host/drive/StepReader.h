#pragma once

#include "host/drive/DriveStep.h"
#include "host/drive/OrderedJson.h"

#include <QDir>
#include <QStringList>

// Reads the members of one line of a drive. The first fault is kept; what is asked for after it is empty.
//
//     StepReader reader(line);
//     const QString view = reader.text("touch");
//     const double hold = reader.seconds("hold", 0.0);
//     reader.refuseUnknown();          // "there is no member "holt" in a touch step"
//     if (!reader.ok()) … reader.fault()
class StepReader {
public:
    // The line has to be a valid JSON object.
    explicit StepReader(const QByteArray& line);

    bool ok() const { return mFault.isEmpty(); }
    QString fault() const { return mFault; }
    // Keeps a fault that the caller has found.
    void refuse(const QString& reason);

    bool has(const char* name) const { return find(name) != nullptr; }
    bool isNull(const char* name);

    // Members that must be there; texts must not be empty.
    QString text(const char* name);
    int wholeNumber(const char* name);
    ItemChoice item(const char* name);
    QVariant valueOrNull(const char* name);
    // The members of an object of data values, with null for an invalid one. A whole number that the value of its name
    // has no room for, or beyond 32 bit for a name that nobody has yet, is a fault.
    NamedVariants dataValues(const char* name);
    // The members of an object of settings, texts among them.
    NamedVariants settings(const char* name);

    // Members that may be missing.
    // From 0 to kLongestSeconds.
    double seconds(const char* name, double otherwise);
    std::optional<bool> truth(const char* name);
    std::optional<QString> anyText(const char* name);

    // A member that nobody has asked for is a fault.
    void refuseUnknown(const QString& kind);

private:
    // Some 23 days, which still are milliseconds of 32 bit.
    static constexpr int kLongestSeconds = 2000000;

    // The members of an object that is not empty.
    std::vector<OrderedMember> object(const char* name);
    void refuse(const char* name, const OrderedMember& member);
    const OrderedMember* find(const char* name) const;
    // The member, or null and a fault. Marks it as known.
    const OrderedMember* demand(const char* name);
    const OrderedMember* optional(const char* name);

    std::vector<OrderedMember> mMembers;
    QStringList mKnown;
    QString mFault;
};
