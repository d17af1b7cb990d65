#include "HelixDash/services/ConfigValue.h"

#include <HelixDash/services/ConfigStore.h>
#include <HelixDash/services/Logger.h>

#include <QStringList>

namespace {

// A comma in an INI value makes a list of it; a setting is always one text here, most often a path or an address.
QString textOf(const QVariant& value) {
    return value.userType() == QMetaType::QStringList ? value.toStringList().join(QLatin1Char(',')) : value.toString();
}

void reportUnfit(const QString& key, const QString& text, const char* wanted) {
    Logger(nullptr, "ERROR") << "Setting" << key << "is not" << wanted << "but" << text;
}

}  // namespace

QString ConfigStringValue::value() const {
    const QVariant setting = ConfigStore::instance().value(mKey);
    return setting.isValid() ? textOf(setting) : mDefault;
}

int ConfigIntValue::value() const {
    const QVariant setting = ConfigStore::instance().value(mKey);
    if (!setting.isValid())
        return mDefault;
    bool ok = false;
    const int number = textOf(setting).toInt(&ok);
    if (!ok)
        reportUnfit(mKey, textOf(setting), "a whole number");
    return ok ? number : mDefault;
}

bool ConfigBoolValue::value() const {
    const QVariant setting = ConfigStore::instance().value(mKey);
    if (!setting.isValid())
        return mDefault;
    const QString text = textOf(setting).toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (text != QLatin1String("false") && text != QLatin1String("0")) {
        reportUnfit(mKey, text, "true or false");
        return mDefault;
    }
    return false;
}
