#include "HelixDash/json/JSONData.h"

#include <HelixDash/json/KJson.h>

QByteArray JSONData::serializedJSON() const {
    return KJson::Serializer::serialize(mMembers);
}
