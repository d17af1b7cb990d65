#pragma once

// The skin's tables, read once from the library's own resource. Not for applications: they name colours and styles
// through SkinColor and Style. UI thread only.

#include <QString>

namespace Skin {

// "#RRGGBB" or "#AARRGGBB"; empty for a name that the skin does not have.
QString color(const QString& name);

// The property list behind a style's name; empty for a name that the skin does not have.
QString style(const QString& name);

}  // namespace Skin
