#include "HelixDash/skin/Skin.h"

#include <HelixDash/views/Style.h>

namespace {

void readProperties(const QString& description, QMap<QString, QString>& into, bool namesAllowed) {
    for (const QString& part : description.split(';', Qt::SkipEmptyParts)) {
        const int colon = part.indexOf(':');
        if (colon >= 0)
            into.insert(part.left(colon).trimmed().toLower(), part.mid(colon + 1).trimmed());
        else if (namesAllowed)
            readProperties(Skin::style(part.trimmed()), into, false);
    }
}

}  // namespace

Style::Style(const QString& description) {
    readProperties(description, mProperties, true);
}

Style::Style(const char* description) : Style(QString::fromUtf8(description)) {}

bool Style::has(const QString& property) const {
    return mProperties.contains(property.toLower());
}

QString Style::value(const QString& property) const {
    return mProperties.value(property.toLower());
}

int Style::number(const QString& property, int otherwise) const {
    bool ok = false;
    const int number = value(property).toInt(&ok);
    return ok ? number : otherwise;
}

Qt::Alignment Style::alignment(Qt::Alignment otherwise) const {
    Qt::Alignment horizontal = otherwise & Qt::AlignHorizontal_Mask;
    Qt::Alignment vertical = otherwise & Qt::AlignVertical_Mask;
    for (const QString& word : value("Alignment").toLower().split('|', Qt::SkipEmptyParts)) {
        const QString name = word.trimmed();
        if (name == "center" || name == "hcenter")
            horizontal = Qt::AlignHCenter;
        if (name == "center" || name == "vcenter")
            vertical = Qt::AlignVCenter;
        if (name == "left")
            horizontal = Qt::AlignLeft;
        if (name == "right")
            horizontal = Qt::AlignRight;
        if (name == "top")
            vertical = Qt::AlignTop;
        if (name == "bottom")
            vertical = Qt::AlignBottom;
    }
    return horizontal | vertical;
}

bool Style::wordWrap() const {
    return value("Alignment").contains("wordwrap", Qt::CaseInsensitive);
}

QFont::Weight Style::weight(QFont::Weight otherwise) const {
    const QString name = value("Weight").toLower();
    if (name == "regular")
        return QFont::Normal;
    if (name == "medium")
        return QFont::Medium;
    if (name == "semibold")
        return QFont::DemiBold;
    if (name == "bold")
        return QFont::Bold;
    return otherwise;
}
