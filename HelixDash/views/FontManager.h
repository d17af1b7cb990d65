#pragma once

// The screen's one typeface.
//
//     label->setFont(FontManager::standardFont(25));
//
// Sizes are pixels of the screen. Text to be read from the driver's seat wants 19 and more (ISO 15008: 16 to 20 arc
// minutes); the skin uses 19, 24, 26 and 64. Medium is the weight to read, heavier ones mark a heading or a choice:
// thin strokes are the first to go in sunlight.

#include <HelixDash/Export.h>

#include <QFont>

class HELIXDASH_EXPORT FontManager {
public:
    static QFont standardFont(int px, QFont::Weight weight = QFont::Medium);
};
