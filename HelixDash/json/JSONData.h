#pragma once

#include <HelixDash/Export.h>

#include <QByteArray>
#include <QVariant>

// A JSON object that is built member by member.
//
//     JSONData body;
//     body.insert("url", url);
//     QByteArray text = body.serializedJSON();   // {"url":"…"}
class HELIXDASH_EXPORT JSONData {
public:
    // Adds or replaces a member. Values: text, numbers, bool, QVariantMap, QVariantList; invalid is null.
    void insert(const QString& key, const QVariant& value) { mMembers.insert(key, value); }
    const QVariantMap& members() const { return mMembers; }

    // Compact UTF-8 text, members in ascending order of name.
    QByteArray serializedJSON() const;

private:
    QVariantMap mMembers;
};
