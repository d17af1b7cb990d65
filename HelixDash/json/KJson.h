#pragma once

#include <HelixDash/Export.h>

#include <QByteArray>
#include <QString>
#include <QVariant>

class QIODevice;

// JSON text to variants and back.
namespace KJson {

// What parsing gave: the value, or where and why the text is no JSON.
struct ParseResult {
    QVariant value;  // invalid if the text could not be read
    QString error;   // empty on success
    int line = 0;    // 1-based line of the error
    bool ok() const { return error.isEmpty(); }
};

class HELIXDASH_EXPORT Parser {
public:
    // Objects become QVariantMap, arrays QVariantList, whole numbers qlonglong, other numbers double.
    static ParseResult parse(const QByteArray& text);
    // Reads the open device to its end; a device that is not open gives an error.
    static ParseResult parse(QIODevice& device);
};

class HELIXDASH_EXPORT Serializer {
public:
    // A map or list as compact UTF-8 text; empty text for anything else.
    static QByteArray serialize(const QVariant& value);
};

}  // namespace KJson
