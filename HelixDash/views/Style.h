#pragma once

// How a view looks: the name of a style of the skin, a list of properties, or both.
//
//     button->setStyle("ButtonType:large; Width: 240");
//     label->setStyle("SettingsMainLabel; Weight:semibold");
//
// Parts are separated by ";". A part with a ":" is a property, one without is the name of a style in the skin, whose
// properties are taken over; what stands further right wins. Case of names and blanks around them do not matter.
//
// Alignment      any of left, right, center, hcenter, vcenter, top, bottom and wordwrap, with "|" between them (labels)
// Padding        pixels kept free around the text (labels)
// Color          skin colour of the text (labels)
// FontSize       pixels (labels, buttons)
// Weight         regular, medium, semibold, bold (labels, buttons)
// ButtonType     normal, large, primary (what the screen is for), stop (what ends it) (buttons)
// Width, Height  pixels (buttons)
//
// "center" alone centres both ways; with "top" or "bottom" it centres sideways.

#include <HelixDash/Export.h>

#include <QFont>
#include <QMap>
#include <QString>

class HELIXDASH_EXPORT Style {
public:
    Style() = default;
    Style(const QString& description);
    Style(const char* description);

    bool has(const QString& property) const;
    // Empty where the style does not say.
    QString value(const QString& property) const;
    int number(const QString& property, int otherwise) const;
    Qt::Alignment alignment(Qt::Alignment otherwise) const;
    bool wordWrap() const;
    QFont::Weight weight(QFont::Weight otherwise) const;

private:
    QMap<QString, QString> mProperties;
};
