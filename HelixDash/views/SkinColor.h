#pragma once

// The colours of the skin by name.
//
//     painter.setPen(SkinColor::color("battery/green"));
//
// "black" text, "quiet" text that may be overlooked, "faded" text of what is disabled, "red" and the status colours
// "battery/green", "battery/red", "battery/blue", "battery/black"; "screen", "panel", "track", "line" and "edge" for
// surfaces and their borders; "black3" is black at 3 %, a tint for a panel. Every text colour has a contrast of at
// least 4.5:1 to the surfaces (WCAG 2.2, 1.4.3).

#include <HelixDash/Export.h>

#include <QColor>
#include <QString>

class HELIXDASH_EXPORT SkinColor {
public:
    // A name that the skin does not have gives "black", and a warning in the log.
    static QColor color(const QString& name);
    static bool has(const QString& name);

    // Contrast of two opaque colours, 1 to 21; WCAG 2.2's definition of relative luminance.
    static double contrast(const QColor& one, const QColor& other);
};
