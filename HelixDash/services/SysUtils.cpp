#include "HelixDash/services/SysUtils.h"

namespace {

QString& storedVin() {
    static QString vin;
    return vin;
}

}  // namespace

QString SysUtils::vin() {
    return storedVin();
}

void SysUtils::setVin(const QString& vin) {
    storedVin() = vin;
}
