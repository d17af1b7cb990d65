#include "HelixDash/skin/Skin.h"

#include <QFile>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QHash<QString, QString> readTable(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the skin has no %s", qPrintable(path));
    QJsonParseError error;
    const QJsonObject object = QJsonDocument::fromJson(file.readAll(), &error).object();
    if (error.error != QJsonParseError::NoError)
        qFatal("%s: %s", qPrintable(path), qPrintable(error.errorString()));
    QHash<QString, QString> table;
    for (auto it = object.begin(); it != object.end(); ++it)
        table.insert(it.key(), it.value().toString());
    return table;
}

}  // namespace

QString Skin::color(const QString& name) {
    static const QHash<QString, QString> table = readTable(":/HelixDash/skin/colors.json");
    return table.value(name);
}

QString Skin::style(const QString& name) {
    static const QHash<QString, QString> table = readTable(":/HelixDash/skin/styles.json");
    return table.value(name);
}
