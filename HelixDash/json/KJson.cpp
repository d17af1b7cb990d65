#include "HelixDash/json/KJson.h"

#include <QIODevice>
#include <QJsonDocument>

namespace KJson {

ParseResult Parser::parse(const QByteArray& text) {
    QJsonParseError failure;
    const QJsonDocument document = QJsonDocument::fromJson(text, &failure);
    ParseResult result;
    if (failure.error == QJsonParseError::NoError) {
        result.value = document.toVariant();
    } else {
        result.error = failure.errorString();
        result.line = 1 + int(text.left(failure.offset).count('\n'));
    }
    return result;
}

ParseResult Parser::parse(QIODevice& device) {
    if (!device.isReadable())
        return {QVariant(), QStringLiteral("cannot be read: ") + device.errorString(), 0};
    return parse(device.readAll());
}

QByteArray Serializer::serialize(const QVariant& value) {
    return QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact);
}

}  // namespace KJson
