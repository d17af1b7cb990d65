#include "HelixDash/skin/Skin.h"

#include <HelixDash/views/SkinColor.h>

#include <algorithm>
#include <cmath>

namespace {

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

}  // namespace

QColor SkinColor::color(const QString& name) {
    const QString value = Skin::color(name);
    if (!value.isEmpty())
        return QColor(value);
    qWarning("no colour %s in the skin", qPrintable(name));
    return QColor(Skin::color("black"));
}

bool SkinColor::has(const QString& name) {
    return !Skin::color(name).isEmpty();
}

double SkinColor::contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}
