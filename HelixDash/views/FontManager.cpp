#include <HelixDash/views/FontManager.h>

#include <QStringList>

QFont FontManager::standardFont(int px, QFont::Weight weight) {
    QFont font;
    font.setFamilies({QStringLiteral("Inter"), QStringLiteral("DejaVu Sans"), QStringLiteral("sans-serif")});
    font.setPixelSize(px);
    font.setWeight(weight);
    // Glyph places that do not depend on the platform's hinting keep pictures of the screen comparable.
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}
